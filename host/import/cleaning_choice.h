// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>
#include <memory>
#include <optional>

/// @file
/// How an import is to be cleaned, as far as the import dialog asks for it, in words of Qt alone.

namespace corvane
{

struct CleaningRequest;

struct CleaningChoice {
    QString confounds;
    QString strategy;
    std::optional<double> fdThreshold; ///< mm; unset: the strategy's own
};

/// The strategies that a table of confounds alone decides, in the order in which they are shown.
QStringList strategyNames();

/// Which columns a strategy takes, and what it leaves out, in a line each.
QString strategyText(const QString &name);

std::shared_ptr<const CleaningRequest> cleaningOf(const CleaningChoice &choice);
CleaningChoice choiceOf(const CleaningRequest &request);

/// The table of confounds in the folder of a run that belongs to it by its name: that with the most
/// of the run's entities and none that the run has not. Empty without one, and when several have as
/// many.
QString confoundsBeside(const QString &run);

} // namespace corvane
