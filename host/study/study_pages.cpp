// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/study/study_pages.h"

#include "host/derivatives/run_images.h"
#include "host/files/input_file.h"
#include "host/files/output_file.h"
#include "host/report/study_page.h"
#include "host/study/compute_row.h"

#include <QFileInfo>
#include <QJsonDocument>

#include <algorithm>

namespace corvane
{

namespace
{

/// The page of a row below the study; empty when it has none.
QString pageOf(const RowRecord &record)
{
    const QString name = runPageName(record.name);
    return record.status == RowStatus::Done && record.outputs.contains(name)
               ? record.name.folder + QLatin1Char('/') + name
               : QString();
}

ReportedRun reportedRun(const KnownRow &row)
{
    const RowRecord &record = row.record;
    const QString start = participantFolder(record.name.participant) + QLatin1Char('_');
    QString name = record.name.prefix;
    if (name.startsWith(start))
        name = name.mid(start.size());
    return {name,
            record.name.atlas,
            row.isRecorded ? nameOf(record.status) : QStringLiteral("open"),
            record.reason,
            row.isRecorded ? pageOf(record) : QString(),
            record.ledger};
}

void writeChanged(const QString &path, const QByteArray &bytes)
{
    if (bytesIfThere(path) != bytes)
        writeFile(path, bytes);
}

QString subjectPageName(const QString &participantFolder)
{
    return participantFolder + QStringLiteral(".html");
}

QString titleOf(const QString &out)
{
    const auto bytes = bytesIfThere(out + QStringLiteral("/dataset_description.json"));
    return QJsonDocument::fromJson(bytes.value_or(QByteArray()))
        .object()[QStringLiteral("Name")]
        .toString();
}

std::vector<std::pair<QString, QString>> settingsOf(const QJsonObject &options)
{
    std::vector<std::pair<QString, QString>> settings;
    for (const QString &name : options.keys())
        settings.emplace_back(QStringLiteral("--") + name, options[name].isBool()
                                                               ? QStringLiteral("yes")
                                                               : options[name].toString());
    return settings;
}

} // namespace

void writeSubjectPage(const QString &out, const QString &participantFolder,
                      const std::vector<KnownRow> &rows)
{
    std::vector<ReportedRun> runs;
    std::transform(rows.begin(), rows.end(), std::back_inserter(runs), reportedRun);
    writeChanged(out + QLatin1Char('/') + subjectPageName(participantFolder),
                 subjectPage(participantFolder, runs));
}

void writeStudyPage(const QString &out, const std::vector<KnownRow> &rows, const QString &table)
{
    StudySummary summary;
    summary.title = titleOf(out);
    summary.table = table;
    for (const KnownRow &row : rows) {
        const QString participant = participantFolder(row.record.name.participant);
        const QString page = subjectPageName(participant);
        summary.rows.push_back({participant,
                                QFileInfo::exists(out + QLatin1Char('/') + page) ? page : QString(),
                                reportedRun(row)});
        if (summary.settings.empty())
            summary.settings = settingsOf(row.record.options);
    }
    writeChanged(out + QStringLiteral("/index.html"), studyPage(summary));
}

} // namespace corvane
