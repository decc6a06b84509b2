// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/study/study_folder.h"

#include "host/files/file_system.h"
#include "host/files/input_error.h"
#include "host/files/listing.h"
#include "host/study/slurm_job.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>

#include <thread>

namespace corvane
{

void makeStudyFolder(const QString &path)
{
    if (QFileInfo(path).isDir())
        return;
    try {
        makeFolders(path);
    } catch (const std::system_error &error) {
        throw InputError(path, QStringLiteral("output folder"), wordsFor(error.code()),
                         QStringLiteral("a folder that can be written to"));
    }
}

void tidyStudyFolder(const QString &path)
{
    const HiddenPath own(path);
    removeLeftBehind(path, own);
}

QStringList participantFolders(const QString &out)
{
    return namesInFolder(out, {QStringLiteral("sub-*")}, Listed::Folders);
}

std::unique_ptr<FileLock> lockStudy(const QString &out,
                                    const std::function<void(const QString &line)> &tell)
{
    constexpr int untilTold = 2000; // ms
    constexpr int longestWait = 600000;
    const SlurmJob job = slurmJob();
    auto lock = std::make_unique<FileLock>(out + QStringLiteral("/.corvane-study.lock"), job.number,
                                           job.restart);
    QElapsedTimer waiting;
    waiting.start();
    bool isTold = false;
    while (!lock->take(slurmJobHasEnded)) {
        if (!isTold && waiting.hasExpired(untilTold)) {
            tell(QStringLiteral("%1: waiting for %2").arg(out, lock->holder()));
            isTold = true;
        }
        if (waiting.hasExpired(longestWait))
            throw InputError(out, QStringLiteral("locking"), lock->holder(),
                             QStringLiteral("that it comes to its end"));
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return lock;
}

} // namespace corvane
