// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>

#include <functional>
#include <vector>

/// @file
/// A study as jobs of Slurm: an array with some participants for each of its tasks, and a job
/// behind it that collects. Slurm alone decides what runs where and when.

namespace corvane
{

struct SlurmWork {
    QString out;              ///< the study's folder
    QStringList participants; ///< all that have something to do, in their order
    int participantsPerTask = 1;
    qint64 memory = 0;   ///< that a task takes, in bytes
    QStringList options; ///< the user's, for sbatch
    /// Command lines of this program: of a task without its participants, and of what follows when
    /// all tasks are over, one after the other.
    QStringList taskArguments;
    std::vector<QStringList> afterwards;
};

struct SlurmJobs {
    QString array;
    QString collect;
    int tasks = 0;
    QString folder; ///< of the scripts and of what the jobs print
};

/// The participants of each task: more of them where Slurm takes fewer tasks.
std::vector<QStringList> slurmTasks(const QStringList &participants, int perTask, int mostTasks);

/// How many tasks an array may have here. Throws InputError when Slurm does not answer.
int mostSlurmTasks();

/// Submits both jobs. Throws InputError with what sbatch says when it refuses.
SlurmJobs submitToSlurm(const SlurmWork &work);

/// Waits until a job is over, or a signal asks this process to end; the job then goes on.
void waitForSlurm(const QString &job);

} // namespace corvane
