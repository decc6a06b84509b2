// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QCoreApplication>
#include <QStringList>

#include <memory>
#include <stdexcept>
#include <vector>

/// @file
/// The subcommands of the program.

namespace corvane
{

enum ExitStatus { Done = 0, BadInput = 1, WrongUsage = 2 };

class UsageError : public std::runtime_error
{
public:
    explicit UsageError(const QString &text) : std::runtime_error(text.toStdString()) {}
};

/// Makes the application that a command runs in. `arguments` are those of the command, its name
/// first.
using ApplicationMaker = std::unique_ptr<QCoreApplication> (*)(const QStringList &arguments,
                                                               int &argc, char **argv);

/// An application without windows.
std::unique_ptr<QCoreApplication> makePlainApplication(const QStringList &arguments, int &argc,
                                                       char **argv);

/// That of a command with the option --plots: pictures need fonts, and no display.
std::unique_ptr<QCoreApplication> makePlotsApplication(const QStringList &arguments, int &argc,
                                                       char **argv);

struct Command {
    const char *name;     ///< null for what runs without the name of a command
    const char *synopsis; ///< its further lines indented as in the usage of the program
    const char *purpose;
    /// Is called with the command's name first ("import") and the arguments behind it, and returns
    /// the exit status of the process, normally `Done`. Throws InputError for bad input and files
    /// that cannot be written, UsageError for a command line that makes no sense; main() prints the
    /// one line and gives the status.
    int (*run)(const QStringList &arguments);
    ApplicationMaker makeApplication = makePlainApplication;
};

/// The commands of this build, in the order of the usage.
const std::vector<Command> &commands();

/// What runs without the name of a command, for no arguments and for files; none when `run` is
/// null.
const Command &commandWithoutName();

/// How a subcommand is called; empty when there is none of that name.
QString synopsisOf(const QString &name);

} // namespace corvane
