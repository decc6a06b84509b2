// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/file_lock.h"

namespace corvane
{

/// The job of Slurm that this process is part of.
struct SlurmJob {
    QString number; ///< empty outside
    int restart = 0;
};
SlurmJob slurmJob();

/// Whether Slurm says that the job which holds a lock has ended. False when it cannot be asked.
bool slurmJobHasEnded(const LockHolder &holder);

} // namespace corvane
