// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/study/study_plan.h"

#include "host/derivatives/run_images.h"
#include "host/files/input_file.h"
#include "host/files/output_file.h"
#include "host/study/study_folder.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>
#include <map>

namespace corvane
{

namespace
{

const QString formatName = QStringLiteral("Corvane plan of a participant");

QString planPath(const QString &out, const QString &folder)
{
    return QStringLiteral("%1/%2/.corvane-plan.json").arg(out, folder);
}

QByteArray bytesAt(const QString &path)
{
    return bytesIfThere(path).value_or(QByteArray());
}

QByteArray planText(const std::vector<StudyRow> &rows, const StudySettings &settings)
{
    QJsonArray names;
    for (const StudyRow &row : rows)
        names.append(jsonOf(row.name));
    const QJsonObject plan{{QStringLiteral("format"), formatName},
                           {QStringLiteral("version"), 1},
                           {QStringLiteral("dataset"), settings.dataset},
                           {QStringLiteral("options"), settings.options},
                           {QStringLiteral("settings"), settingsSum(settings.options)},
                           {QStringLiteral("pages"), settings.pages},
                           {QStringLiteral("rows"), names}};
    return QJsonDocument(plan).toJson();
}

/// Rows without a run stand in the participant's own folder and are there only as long as somebody
/// asks for them.
void removeOldAbsences(const std::vector<StudyRow> &rows, const QString &out, const QString &folder)
{
    for (const RowRecord &record : recordsOf(out, folder)) {
        const bool isAsked = std::any_of(rows.begin(), rows.end(), [&](const StudyRow &row) {
            return row.name.stem() == record.name.stem() && row.name.folder == record.name.folder;
        });
        if (record.name.folder == folder && record.status == RowStatus::Missing && !isAsked)
            QFile::remove(recordPath(out, record.name));
    }
}

} // namespace

void writePlan(const std::vector<StudyRow> &rows, const StudySettings &settings)
{
    const QString folder = participantFolder(rows.front().name.participant);
    const QString place = settings.out + QLatin1Char('/') + folder;
    makeStudyFolder(place);
    removeOldAbsences(rows, settings.out, folder);
    const QByteArray text = planText(rows, settings);
    if (bytesAt(planPath(settings.out, folder)) == text)
        return;
    tidyStudyFolder(place);
    writeFile(planPath(settings.out, folder), text);
}

bool planHasPages(const QString &out, const QString &participantFolder)
{
    return QJsonDocument::fromJson(bytesAt(planPath(out, participantFolder)))
        .object()[QStringLiteral("pages")]
        .toBool();
}

std::vector<RowRecord> plannedRows(const QString &out, const QString &participantFolder)
{
    const QJsonObject plan =
        QJsonDocument::fromJson(bytesAt(planPath(out, participantFolder))).object();
    std::vector<RowRecord> rows;
    if (plan[QStringLiteral("format")].toString() != formatName ||
        plan[QStringLiteral("version")].toInt() != 1)
        return rows;
    for (const QJsonValue name : plan[QStringLiteral("rows")].toArray()) {
        RowRecord row;
        row.name = rowName(name.toObject());
        row.dataset = plan[QStringLiteral("dataset")].toString();
        row.options = plan[QStringLiteral("options")].toObject();
        row.settings = plan[QStringLiteral("settings")].toString();
        rows.push_back(row);
    }
    return rows;
}

std::vector<KnownRow> knownRows(const QString &out, const QString &participantFolder)
{
    std::map<RowName, KnownRow> rows;
    for (const RowRecord &planned : plannedRows(out, participantFolder))
        rows[planned.name] = {planned, false};
    for (const RowRecord &record : recordsOf(out, participantFolder))
        rows[record.name] = {record, true};
    std::vector<KnownRow> known;
    known.reserve(rows.size());
    for (const auto &[name, row] : rows)
        known.push_back(row);
    return known;
}

} // namespace corvane
