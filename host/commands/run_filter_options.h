// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/derivatives/run_filter.h"

#include <QCommandLineParser>
#include <QStringList>

/// @file
/// The options that choose runs of a pipeline's folder, of every command that works on one.

namespace corvane
{

/// The arguments as the parser understands them: names of options with dashes in place of
/// underscores, and an option of labels once for each of its words. What follows a `foreign` option
/// is its value, whatever it looks like.
QStringList withLabelWords(const QStringList &arguments, const QStringList &foreign = {});

/// --participant-label, --session-id, --task-id, --space and --bids-filter-file.
QStringList runFilterOptionNames();
void addRunFilterOptions(QCommandLineParser &parser);

/// Which runs they ask for. Throws UsageError.
RunFilter runFilterOf(const QCommandLineParser &parser);

} // namespace corvane
