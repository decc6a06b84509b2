// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/study/verify.h"

#include "host/files/input_error.h"
#include "host/files/input_file.h"
#include "host/files/listing.h"
#include "host/files/scratch_folder.h"
#include "host/study/compute_row.h"
#include "host/study/row_state.h"
#include "host/study/study_folder.h"

#include <QDir>
#include <QHash>

namespace corvane
{

namespace
{

std::vector<RowRecord> verifiable(const QString &out)
{
    std::vector<RowRecord> records;
    for (const QString &folder : participantFolders(out))
        for (const RowRecord &record : recordsOf(out, folder))
            if (record.status == RowStatus::Done || record.status == RowStatus::Excluded)
                records.push_back(record);
    return records;
}

/// So many of them, the first and the last among these.
std::vector<RowRecord> spread(const std::vector<RowRecord> &records, int sample)
{
    const auto all = int(records.size());
    if (sample == 0 || sample >= all)
        return records;
    std::vector<RowRecord> chosen;
    for (int n = 0; n < sample; ++n)
        chosen.push_back(
            records[std::size_t(sample == 1 ? 0 : qint64(n) * (all - 1) / (sample - 1))]);
    return chosen;
}

StudyRow rowOf(const RowRecord &record, const RequestMaker &requestOf)
{
    StudyRow row;
    row.name = record.name;
    row.request = requestOf(record.options);
    row.request.repetitionTime = record.repetitionTime;
    for (const InputStamp &input : record.inputs)
        setInput(row.request, input.role, pathOf(input, record.dataset));
    return row;
}

/// What is not the same, one line each.
QStringList differences(const QDir &made, const RowRecord &record, const QString &place)
{
    QStringList lines;
    QStringList names = namesInFolder(made.path(), {QStringLiteral("*")}, Listed::Files);
    for (const QString &name : record.outputs)
        if (!names.contains(name))
            lines += name + QStringLiteral(": is not made any more");
    for (const QString &name : names) {
        const auto there = bytesIfThere(place + QLatin1Char('/') + name);
        if (!there)
            lines += name + QStringLiteral(": is not there");
        else if (there != bytesIfThere(made.filePath(name)))
            lines += name + QStringLiteral(": differs");
    }
    return lines;
}

QStringList faultsOf(const QString &out, const RowRecord &record, const RequestMaker &requestOf)
{
    const auto again = [&](const QString &what) {
        return QStringList{record.name.stem() + QStringLiteral(": ") + what};
    };
    const bool wasExcluded = record.status == RowStatus::Excluded;
    const ScratchFolder scratch;
    const OutputFolder made(scratch.path(), writerOf(record.name));
    try {
        writeRow(rowOf(record, requestOf), record.dataset,
                 record.outputs.contains(runPageName(record.name)), made);
    } catch (const signals::Refused &refusal) {
        return wasExcluded && record.reason == QString::fromUtf8(refusal.what())
                   ? QStringList()
                   : again(QStringLiteral("is excluded now: ") + QString::fromUtf8(refusal.what()));
    } catch (const InputError &error) {
        return again(QString::fromUtf8(error.what()));
    } catch (const signals::Error &error) {
        return again(QString::fromUtf8(error.what()));
    }
    return wasExcluded ? again(QStringLiteral("was excluded and can be computed now"))
                       : differences(QDir(made.path()), record,
                                     out + QLatin1Char('/') + record.name.folder);
}

} // namespace

VerifyCounts verifyRows(const QString &out, int sample, const RequestMaker &requestOf,
                        const Tell &tell)
{
    VerifyCounts counts;
    for (const RowRecord &record : spread(verifiable(out), sample)) {
        const QStringList faults = faultsOf(out, record, requestOf);
        for (const QString &fault : faults)
            tell(fault);
        ++counts.rows;
        counts.differ += faults.isEmpty() ? 0 : 1;
    }
    return counts;
}

VerifyCounts verifyInputs(const QString &out, const Tell &tell)
{
    VerifyCounts counts;
    QHash<QString, QString> sums; // an atlas is read once
    const auto faultOf = [&](const InputStamp &stamp, const QString &path) -> QString {
        try {
            if (!sums.contains(path))
                sums.insert(path, sumOf(path));
        } catch (const InputError &error) {
            return QString::fromUtf8(error.what());
        }
        return sums[path] == stamp.sum
                   ? QString()
                   : path + QStringLiteral(": is another file than the one that "
                                           "was read");
    };
    for (const RowRecord &record : verifiable(out)) {
        QStringList faults;
        for (const InputStamp &stamp : record.inputs) {
            const QString fault =
                stamp.sum.isEmpty() ? QString() : faultOf(stamp, pathOf(stamp, record.dataset));
            if (!fault.isEmpty())
                faults += record.name.stem() + QStringLiteral(": ") + fault;
        }
        for (const QString &fault : qAsConst(faults))
            tell(fault);
        ++counts.rows;
        counts.differ += faults.isEmpty() ? 0 : 1;
    }
    return counts;
}

} // namespace corvane
