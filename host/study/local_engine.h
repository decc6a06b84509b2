// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>

#include <functional>
#include <vector>

/// @file
/// One process of this program for each participant, on this machine: never more at once than are
/// asked for, nor than fit into memory, but always one.

namespace corvane
{

/// A participant's share of the work.
struct LocalTask {
    QString participant;
    std::function<qint64()> memory; ///< about how many bytes it takes; asked when its turn has come
};

struct LocalWork {
    QString program; ///< empty for this one
    std::vector<LocalTask> tasks;
    int processes = 1;
    qint64 memory = 0; ///< that all of them may take together; 0 for any
    /// The command line for a participant; `isAgain` after a process for it had crashed.
    std::function<QStringList(const QString &participant, bool isAgain)> arguments;
    /// Is told how a process for a participant was ended ("signal 9"), and says whether something
    /// is left for another one.
    std::function<bool(const QString &participant, const QString &how)> crashed;
};

/// Runs all tasks. When a signal asks this process to end it ends those of the tasks and returns:
/// the process then ends by that signal (housekeeping.h). Throws InputError when no process can be
/// started.
void runLocally(const LocalWork &work);

} // namespace corvane
