// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/study/study_status.h"

#include "dataset/counted.h"
#include "host/files/input_error.h"
#include "host/study/run_rows.h"
#include "host/study/study_folder.h"

#include <QFileInfo>

namespace corvane
{

namespace
{

void count(const KnownRow &row, const QString &out, StudyStatus &status)
{
    StudyCounts &counts = status.counts;
    ++counts.rows;
    if (const auto holder = holderOf(lockPath(out, row.record.name))) {
        ++counts.inWork;
        status.lines +=
            QStringLiteral("%1: in work, %2").arg(row.record.name.stem(), holder->words());
        return;
    }
    // What another process had in work when the records were read may be done by now.
    const std::optional<RowRecord> record =
        row.isRecorded ? row.record : readRecord(recordPath(out, row.record.name));
    if (!record) {
        ++counts.open;
        return;
    }
    switch (record->status) {
    case RowStatus::Done:
        ++counts.done;
        return;
    case RowStatus::Excluded:
        ++counts.excluded;
        break;
    case RowStatus::Missing:
        ++counts.missing;
        break;
    case RowStatus::Failed:
        ++counts.failed;
        break;
    }
    status.lines += lineOf(*record);
}

} // namespace

StudyStatus studyStatus(const QString &out, const QStringList &folders)
{
    StudyStatus status;
    for (const QString &folder : folders)
        for (const KnownRow &row : knownRows(out, folder))
            count(row, out, status);
    return status;
}

QString text(const StudyCounts &counts)
{
    QStringList parts;
    const auto add = [&](int number, const char *what) {
        if (number > 0)
            parts += QStringLiteral("%1 %2").arg(number).arg(QLatin1String(what));
    };
    add(counts.done, "done");
    add(counts.excluded, "excluded");
    add(counts.missing, "missing");
    add(counts.failed, "failed");
    add(counts.inWork, "in work");
    add(counts.open, "open");
    const QString rows = counted(counts.rows, "row");
    return parts.isEmpty() ? rows : rows + QStringLiteral(": ") + parts.join(QStringLiteral(", "));
}

void requireStudy(const QString &out)
{
    const QFileInfo info(out);
    if (!info.isDir() || participantFolders(out).isEmpty())
        throw InputError(out, QStringLiteral("opening"),
                         !info.exists()  ? QStringLiteral("nothing of this name")
                         : !info.isDir() ? QStringLiteral("a file")
                                         : QStringLiteral("no folder of a participant"),
                         QStringLiteral("a folder that Corvane cohort has written to"));
}

} // namespace corvane
