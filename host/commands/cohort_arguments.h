// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/study/study_engine.h"

#include <QCommandLineParser>

/// @file
/// The command line of `Corvane cohort`, in the manner of BIDS apps: names of options with dashes
/// or underscores, labels with or without their prefix, and options that take several words.

namespace corvane
{

/// The same arguments as the parser understands them: names with dashes, an option of labels once
/// for each of its words.
QStringList withPlainOptions(const QStringList &arguments);

/// All options of all steps.
void addCohortOptions(QCommandLineParser &parser);

/// The one step that an option is for; empty for one of every step that is given a dataset.
QString stepOf(const QString &option);

/// Which runs are asked for. Throws UsageError.
RunFilter runFilter(const QCommandLineParser &parser);

/// What all rows have in common. Throws UsageError, also without --clean or an atlas.
StudySettings studySettings(const QCommandLineParser &parser, const QString &dataset,
                            const QString &out);

/// The request, without files, that options of StudySettings stand for. Throws UsageError.
ConnectomeRequest requestOf(const QJsonObject &options);

/// The command line for other participants of the same study: without what says who computes where.
/// `arguments` are plain ones.
StudyCommand studyCommand(const QStringList &arguments);

} // namespace corvane
