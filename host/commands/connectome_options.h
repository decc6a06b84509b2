// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/extract/connectome.h"

#include <QCommandLineParser>

/// @file
/// The options that say how matrices of a run are made, of every command that makes them. What
/// names files of a run is the command's own, --events among it.

namespace corvane
{

/// All but those of the cleaning (cleaning_options.h).
QList<QCommandLineOption> connectomeSettingOptions();

/// What they ask for, with the cleaning and without a file. Throws UsageError, also for an option
/// that has nothing to work on.
ConnectomeRequest connectomeSettings(const QCommandLineParser &parser);

/// Throws UsageError unless names of files can hold it.
void requireAtlasName(const QString &name);

} // namespace corvane
