// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/study/slurm_job.h"

#include <QProcess>

namespace corvane
{

SlurmJob slurmJob()
{
    return {QString::fromLocal8Bit(qgetenv("SLURM_JOB_ID")),
            qEnvironmentVariableIntValue("SLURM_RESTART_COUNT")};
}

bool slurmJobHasEnded(const LockHolder &holder)
{
    constexpr int longestWait = 10000; // ms
    QProcess squeue;
    squeue.start(QStringLiteral("squeue"),
                 {QStringLiteral("--noheader"), QStringLiteral("--format=%T"),
                  QStringLiteral("--jobs=") + holder.job});
    if (!squeue.waitForStarted() || !squeue.waitForFinished(longestWait) ||
        squeue.exitStatus() != QProcess::NormalExit)
        return false;
    const QByteArray state = squeue.readAllStandardOutput().trimmed();
    if (squeue.exitCode() != 0) // a job that it has forgotten
        return squeue.readAllStandardError().contains("Invalid job id");
    static const QList<QByteArray> live{"RUNNING",  "COMPLETING", "SUSPENDED", "STOPPED",
                                        "RESIZING", "SIGNALING",  "STAGE_OUT", "CONFIGURING"};
    return !live.contains(state);
}

} // namespace corvane
