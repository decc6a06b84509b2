// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/study/row_record.h"

#include "host/files/input_file.h"
#include "host/files/json_file.h"
#include "host/files/listing.h"
#include "host/files/output_file.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>

namespace corvane
{

namespace
{

const QString formatName = QStringLiteral("Corvane row of a study");

constexpr NamedValue<RowStatus> statusNames[] = {{RowStatus::Done, "done"},
                                                 {RowStatus::Excluded, "excluded"},
                                                 {RowStatus::Missing, "missing"},
                                                 {RowStatus::Failed, "failed"}};

QStringList textsOf(const QJsonValue &value)
{
    QStringList texts;
    for (const QJsonValue text : value.toArray())
        texts += text.toString();
    return texts;
}

QJsonObject jsonOf(const RowRecord &record)
{
    QJsonArray inputs;
    for (const InputStamp &input : record.inputs)
        inputs.append(jsonOf(input));
    return {{QStringLiteral("format"), formatName},
            {QStringLiteral("version"), 1},
            {QStringLiteral("row"), jsonOf(record.name)},
            {QStringLiteral("status"), nameOf(record.status)},
            {QStringLiteral("reason"), record.reason},
            {QStringLiteral("dataset"), record.dataset},
            {QStringLiteral("options"), record.options},
            {QStringLiteral("settings"), record.settings},
            {QStringLiteral("repetitionTime"),
             record.repetitionTime ? QJsonValue(*record.repetitionTime) : QJsonValue()},
            {QStringLiteral("inputs"), inputs},
            {QStringLiteral("outputs"), QJsonArray::fromStringList(record.outputs)},
            {QStringLiteral("ledger"), record.ledger},
            {QStringLiteral("notes"), QJsonArray::fromStringList(record.notes)},
            {QStringLiteral("begun"), record.begun.toUTC().toString(Qt::ISODateWithMs)},
            {QStringLiteral("ended"), record.ended.toUTC().toString(Qt::ISODateWithMs)},
            {QStringLiteral("host"), record.host},
            {QStringLiteral("process"), double(record.process)},
            {QStringLiteral("job"), record.job},
            {QStringLiteral("software"), QStringLiteral(TESSERA_VERSION)}};
}

RowRecord recordOf(const QJsonObject &json)
{
    const auto text = [&](const char *key) { return json[QLatin1String(key)].toString(); };
    const auto time = [&](const char *key) {
        return QDateTime::fromString(text(key), Qt::ISODateWithMs);
    };
    RowRecord record;
    record.name = rowName(json[QStringLiteral("row")].toObject());
    for (const NamedValue<RowStatus> &entry : statusNames)
        if (text("status") == QLatin1String(entry.name))
            record.status = entry.value;
    record.reason = text("reason");
    record.dataset = text("dataset");
    record.options = json[QStringLiteral("options")].toObject();
    record.settings = text("settings");
    if (json[QStringLiteral("repetitionTime")].isDouble())
        record.repetitionTime = json[QStringLiteral("repetitionTime")].toDouble();
    for (const QJsonValue input : json[QStringLiteral("inputs")].toArray())
        record.inputs.push_back(stampOf(input.toObject()));
    record.outputs = textsOf(json[QStringLiteral("outputs")]);
    record.ledger = json[QStringLiteral("ledger")].toObject();
    record.notes = textsOf(json[QStringLiteral("notes")]);
    record.begun = time("begun");
    record.ended = time("ended");
    record.host = text("host");
    record.process = wholeNumberOf(json[QStringLiteral("process")], 0);
    record.job = text("job");
    return record;
}

} // namespace

QString nameOf(RowStatus status)
{
    return QLatin1String(nameOf(status, statusNames));
}

void writeRecord(const QString &out, const RowRecord &record)
{
    writeFile(recordPath(out, record.name), QJsonDocument(jsonOf(record)).toJson());
}

std::optional<RowRecord> readRecord(const QString &path)
{
    const auto bytes = bytesIfThere(path);
    if (!bytes)
        return std::nullopt;
    const QJsonObject json = QJsonDocument::fromJson(*bytes).object();
    if (json[QStringLiteral("format")].toString() != formatName ||
        json[QStringLiteral("version")].toInt() != 1)
        return std::nullopt;
    return recordOf(json);
}

std::vector<RowRecord> recordsOf(const QString &out, const QString &participantFolder)
{
    const QDir participant(out + QLatin1Char('/') + participantFolder);
    QStringList folders{QString(), QStringLiteral("func")};
    for (const QString &session :
         namesInFolder(participant.path(), {QStringLiteral("ses-*")}, Listed::Folders))
        folders += session + QStringLiteral("/func");
    std::vector<RowRecord> records;
    for (const QString &folder : qAsConst(folders)) {
        const QDir place(participant.filePath(folder));
        for (const QString &name :
             namesInFolder(place.path(), {QStringLiteral(".corvane-row-*.json")}, Listed::Files))
            if (const auto record = readRecord(place.filePath(name)))
                records.push_back(*record);
    }
    std::stable_sort(records.begin(), records.end(),
                     [](const RowRecord &a, const RowRecord &b) { return a.name < b.name; });
    return records;
}

} // namespace corvane
