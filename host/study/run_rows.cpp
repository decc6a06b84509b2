// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/study/run_rows.h"

#include "host/derivatives/run_images.h"
#include "host/files/file_lock.h"
#include "host/files/input_error.h"
#include "host/study/compute_row.h"
#include "host/study/row_state.h"
#include "host/study/slurm_job.h"
#include "host/study/study_folder.h"
#include "host/study/study_pages.h"

#include <QFileInfo>

namespace corvane
{

namespace
{

FileLock lockOf(const QString &out, const RowName &name)
{
    const SlurmJob job = slurmJob();
    return FileLock(lockPath(out, name), job.number, job.restart);
}

} // namespace

QString lineOf(const RowRecord &record)
{
    QString line = record.name.stem() + QStringLiteral(": ") + nameOf(record.status);
    if (record.status != RowStatus::Done)
        return line + QStringLiteral(": ") + record.reason;
    const auto number = [&](const char *key) {
        return record.ledger[QLatin1String(key)].toDouble();
    };
    return line + QStringLiteral(", %1 of %2 volumes kept, %3 degrees of freedom left")
                      .arg(number("Kept"))
                      .arg(number("Volumes"))
                      .arg(number("DegreesOfFreedom"), 0, 'f', 0);
}

void runRows(const std::vector<StudyRow> &rows, const StudySettings &settings, bool keepFailed,
             const Tell &tell)
{
    const QString sum = settingsSum(settings.options);
    for (const StudyRow &row : rows) {
        makeStudyFolder(settings.out + QLatin1Char('/') + row.name.folder);
        FileLock lock = lockOf(settings.out, row.name);
        if (!lock.take(slurmJobHasEnded)) {
            tell(
                QStringLiteral("%1: passed over, %2 is at it").arg(row.name.stem(), lock.holder()));
            continue;
        }
        const std::optional<RowRecord> record = readRecord(recordPath(settings.out, row.name));
        const bool stays = keepFailed && record && record->status == RowStatus::Failed;
        if (!stays && !whyToMake(row, record, settings, sum).isEmpty())
            tell(lineOf(computeRow(row, settings, record)));
    }
    const QString folder = participantFolder(rows.front().name.participant);
    if (settings.pages)
        writeSubjectPage(settings.out, folder, knownRows(settings.out, folder));
}

QStringList recordCrashes(const std::vector<RowRecord> &planned, const QString &out,
                          const QString &how)
{
    QStringList lines;
    for (const RowRecord &row : planned) {
        const QString path = lockPath(out, row.name);
        if (!QFileInfo::exists(path))
            continue;
        FileLock lock = lockOf(out, row.name);
        // One that has just been given back tells of a row that is made.
        if (!lock.take(slurmJobHasEnded) || !lock.wasBroken())
            continue;
        RowRecord record = row;
        if (const auto before = readRecord(recordPath(out, row.name)))
            record.outputs = before->outputs;
        record.status = RowStatus::Failed;
        record.reason = QStringLiteral("%1 ended in the midst of it%2")
                            .arg(lock.holder(), how.isEmpty() ? how : QStringLiteral(": ") + how);
        record.begun = record.ended = QDateTime::currentDateTimeUtc();
        writeRecord(out, record);
        lines += lineOf(record);
    }
    return lines;
}

} // namespace corvane
