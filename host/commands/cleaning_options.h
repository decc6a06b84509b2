// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/extract/run_cleaning.h"

#include <QCommandLineParser>

/// @file
/// The options that say how a run is cleaned, of every command that cleans.

namespace corvane
{

/// Adds --clean, --confounds and all that goes with them.
void addCleaningOptions(QCommandLineParser &parser);

/// Of these, those that name no file of a run.
QList<QCommandLineOption> cleaningSettingOptions();

/// Throws UsageError unless --clean names a strategy.
void requireStrategyName(const QCommandLineParser &parser);

/// Whether --clean asks for the table of strategies; then it has been written to standard output.
bool toldStrategies(const QCommandLineParser &parser);

/// Throws UsageError when there is one of them without --clean.
void requireClean(const QCommandLineParser &parser);

/// What they ask for; without --clean nothing is cleaned. Throws UsageError, also for an option
/// that has nothing to work on.
CleaningRequest cleaningRequest(const QCommandLineParser &parser);

/// Likewise by cleaningSettingOptions alone: without files.
CleaningRequest cleaningSettings(const QCommandLineParser &parser);

} // namespace corvane
