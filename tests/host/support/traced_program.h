// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>

#include <functional>
#include <string>

/// @file
/// Runs a program and stops it at its system calls, so that a test can do something to its files,
/// or end it, at a moment that is always the same.

namespace corvane
{

/// A system call of the main thread that is about to be made.
struct SystemCall {
    enum Kind { Open, Rename, Remove, MakeFolder };
    Kind kind;
    std::string path; ///< the first one that it names
};

enum class Fate { GoesOn, IsKilled };

struct TracedRun {
    int status = -1; ///< of its exit, -1 when a signal ended it
    int signal = 0;  ///< that ended it
    std::string output;
    std::string errors;
};

/// Runs a program until it ends. The watcher is asked before each call; one that answers IsKilled
/// ends the program there as by `kill -9`, and the call is never made.
TracedRun runTraced(const QString &program, const QStringList &arguments,
                    const std::function<Fate(const SystemCall &call)> &watcher);

} // namespace corvane
