// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QCommandLineParser>
#include <QStringList>

/// @file
/// What all subcommands do with their arguments.

namespace corvane
{

/// Arguments behind those that a command must have.
enum class AndMore { Refused, Allowed };

/// Parses the arguments of a subcommand, those that are no options by their names. Adds the help
/// option; returns false when it was given and the help has been written to standard output. Throws
/// UsageError for unknown options, for options without their value or given twice (but for those
/// that may be repeated), and for arguments that are missing or, unless allowed, more than those.
bool parseArguments(QCommandLineParser &parser, const QStringList &arguments,
                    const QStringList &plainArguments = {}, const QStringList &repeatable = {},
                    AndMore more = AndMore::Refused);

/// Throws UsageError when an option was given twice, be it with a value or without: of two values
/// only one could count. Not so of those that may be repeated.
void refuseRepeatedOptions(const QCommandLineParser &parser, const QStringList &repeatable = {});

/// The value of an option that must be given. Throws UsageError.
QString requiredValue(const QCommandLineParser &parser, const QString &option);

} // namespace corvane
