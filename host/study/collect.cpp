// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/study/collect.h"

#include "host/files/input_error.h"
#include "host/files/input_file.h"
#include "host/files/output_file.h"
#include "host/files/tsv_text.h"
#include "host/study/study_folder.h"
#include "host/study/study_pages.h"
#include "host/study/study_plan.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

#include <limits>

namespace corvane
{

namespace
{

QJsonObject jsonAt(const QString &path)
{
    return QJsonDocument::fromJson(bytesIfThere(path).value_or(QByteArray())).object();
}

/// Of the dataset's own description what is true of its derivative as well.
QByteArray descriptionText(const QString &out, const QString &dataset)
{
    const QJsonObject input = jsonAt(dataset + QStringLiteral("/dataset_description.json"));
    QJsonArray generators{
        QJsonObject{{QStringLiteral("Name"), QStringLiteral("Corvane")},
                    {QStringLiteral("Version"), QStringLiteral(TESSERA_VERSION)},
                    {QStringLiteral("Description"),
                     QStringLiteral("Series of nodes and matrices of connectivity")}}};
    for (const QJsonValue generator : input[QStringLiteral("GeneratedBy")].toArray())
        generators.append(generator);
    const QString name = input[QStringLiteral("Name")].toString();
    QJsonObject description{
        {QStringLiteral("Name"),
         name.isEmpty() ? QStringLiteral("Connectomes") : name + QStringLiteral(" - connectomes")},
        {QStringLiteral("BIDSVersion"), QStringLiteral("1.10.0")},
        {QStringLiteral("DatasetType"), QStringLiteral("derivative")},
        {QStringLiteral("GeneratedBy"), generators},
        {QStringLiteral("DatasetLinks"),
         QJsonObject{{QStringLiteral("input"), QDir(out).relativeFilePath(dataset)}}}};
    for (const char *key : {"License", "Authors", "SourceDatasets"})
        if (input.contains(QLatin1String(key)))
            description.insert(QLatin1String(key), input[QLatin1String(key)]);
    return QJsonDocument(description).toJson();
}

/// A folder that describes another dataset holds somebody's data.
void requireOwnDescription(const QString &path)
{
    const QJsonValue first = jsonAt(path)[QStringLiteral("GeneratedBy")]
                                 .toArray()
                                 .first()
                                 .toObject()[QStringLiteral("Name")];
    if (QFile::exists(path) && first.toString() != QLatin1String("Corvane"))
        throw InputError(path, QStringLiteral("GeneratedBy"), quoted(first.toString()),
                         QStringLiteral("a folder of its own for the results"));
}

QByteArray textCell(const QString &text)
{
    QString line = text.simplified();
    return line.isEmpty() ? QByteArray("n/a") : line.toUtf8();
}

QByteArray ledgerCell(const QJsonObject &ledger, const char *key)
{
    const QJsonValue value = ledger[QLatin1String(key)];
    return cell(value.toDouble(std::numeric_limits<double>::quiet_NaN()));
}

struct LedgerColumn {
    const char *name;
    const char *key;
};

constexpr LedgerColumn ledgerColumns[] = {{"volumes", "Volumes"},
                                          {"non_steady", "NonSteady"},
                                          {"censored", "Censored"},
                                          {"kept", "Kept"},
                                          {"rank", "Rank"},
                                          {"degrees_of_freedom", "DegreesOfFreedom"},
                                          {"seconds_kept", "SecondsKept"},
                                          {"mean_fd_before", "MeanFDBefore"},
                                          {"mean_fd_after", "MeanFDAfter"}};

QByteArray headLine()
{
    QList<QByteArray> names{"participant_id", "session_id", "task_id", "space_id", "run",
                            "atlas_id",       "status"};
    for (const LedgerColumn &column : ledgerColumns)
        names += column.name;
    names += "reason";
    return line(names);
}

QByteArray tableLine(const KnownRow &row)
{
    const RowRecord &record = row.record;
    QList<QByteArray> cells{textCell(QStringLiteral("sub-") + record.name.participant),
                            textCell(record.name.session),
                            textCell(record.name.task),
                            textCell(record.name.space),
                            textCell(record.name.prefix),
                            textCell(record.name.atlas),
                            row.isRecorded ? nameOf(record.status).toUtf8() : QByteArray("open")};
    for (const LedgerColumn &column : ledgerColumns)
        cells += ledgerCell(record.ledger, column.key);
    cells += textCell(record.reason);
    return line(cells);
}

} // namespace

void writeDescription(const QString &out, const QString &dataset, const Tell &tell)
{
    const QString path = out + QStringLiteral("/dataset_description.json");
    const QByteArray text = descriptionText(out, dataset);
    const auto lock = lockStudy(out, tell);
    requireOwnDescription(path);
    if (bytesIfThere(path) != text)
        writeFile(path, text);
}

void collectStudy(const QString &out, const Tell &tell)
{
    const auto lock = lockStudy(out, tell);
    tidyStudyFolder(out);
    QByteArray table = headLine();
    std::vector<KnownRow> all;
    bool withPages = false;
    for (const QString &folder : participantFolders(out)) {
        for (const QString &line : recordCrashes(plannedRows(out, folder), out, {}))
            tell(line);
        const std::vector<KnownRow> rows = knownRows(out, folder);
        for (const KnownRow &row : rows)
            table += tableLine(row);
        all.insert(all.end(), rows.begin(), rows.end());
        if (planHasPages(out, folder)) {
            writeSubjectPage(out, folder, rows);
            withPages = true;
        }
    }
    const QString name = QStringLiteral("participants_connectome.tsv");
    writeFile(out + QLatin1Char('/') + name, table);
    if (withPages)
        writeStudyPage(out, all, name);
}

} // namespace corvane
