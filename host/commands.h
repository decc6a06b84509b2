// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QCommandLineParser>
#include <QStringList>
#include <stdexcept>

/// @file
/// The subcommands. Each is called with its own name first ("import") and the arguments behind it,
/// and returns the exit status of the process, normally `Done`. What goes wrong is thrown:
/// InputError for bad input and files that cannot be written, UsageError for a command line that
/// makes no sense; main() prints the one line and gives the status.

namespace corvane
{

enum ExitStatus { Done = 0, BadInput = 1, WrongUsage = 2 };

class UsageError : public std::runtime_error
{
public:
    explicit UsageError(const QString &text) : std::runtime_error(text.toStdString()) {}
};

/// How a subcommand is called. It stands beside main(), with the list of them.
QString synopsisOf(const QString &command);

/// Parses the arguments of a subcommand, those that are no options by their names. Adds the help
/// option; returns false when it was given and the help has been written to standard output. Throws
/// UsageError for unknown options, for options without their value, and for arguments that are
/// missing or more than those.
bool parseArguments(QCommandLineParser &parser, const QStringList &arguments,
                    const QStringList &plainArguments = {});

/// The value of an option that must be given. Throws UsageError.
QString requiredValue(const QCommandLineParser &parser, const QString &option);

int runExample(const QStringList &arguments);
int runImport(const QStringList &arguments);
int runCompute(const QStringList &arguments);
int runGraph(const QStringList &arguments);

} // namespace corvane
