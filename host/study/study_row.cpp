// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/study/study_row.h"

#include "host/derivatives/run_images.h"

#include <QCryptographicHash>
#include <QJsonDocument>

namespace corvane
{

namespace
{

/// A row without a run is called after the labels that were asked for.
QString prefixOf(const StudyRun &run)
{
    QString prefix = participantFolder(run.participant);
    const auto add = [&](const char *entity, const QString &label) {
        if (!label.isEmpty())
            prefix += QLatin1Char('_') + QLatin1String(entity) + QLatin1Char('-') + label;
    };
    add("ses", run.session);
    add("task", run.task);
    add("space", run.space);
    return prefix;
}

RowName nameOf(const StudyRun &run, const StudyAtlas &atlas)
{
    return {run.participant,
            run.session,
            run.task,
            run.space,
            run.folder.isEmpty() ? participantFolder(run.participant) : run.folder,
            run.prefix.isEmpty() ? prefixOf(run) : run.prefix,
            atlas.name};
}

StudyRow rowOf(const StudyRun &run, const StudyAtlas &atlas, const StudySettings &settings)
{
    StudyRow row;
    row.name = nameOf(run, atlas);
    row.reason = run.reason;
    row.request = settings.request;
    row.request.run = run.bold;
    row.request.atlas = atlas.file;
    row.request.labels = atlas.labels;
    row.request.mask = run.mask;
    row.request.cleaning.confounds = run.confounds;
    if (settings.conditions)
        row.request.events = run.events;
    // The header's time is less to be trusted than that of the JSON beside it.
    if (!row.request.repetitionTime)
        row.request.repetitionTime = run.repetitionTime;
    return row;
}

} // namespace

std::vector<StudyRow> rowsOf(const std::vector<StudyRun> &runs, const StudySettings &settings)
{
    std::vector<StudyRow> rows;
    for (const StudyRun &run : runs)
        for (const StudyAtlas &atlas : settings.atlases)
            rows.push_back(rowOf(run, atlas, settings));
    return rows;
}

ConnectomeNames namesOf(const StudyRow &row, const QString &dataset)
{
    return {row.name.prefix, row.name.atlas, dataset};
}

QString settingsSum(const QJsonObject &options)
{
    // A new version of the program may give other bytes.
    QJsonObject all = options;
    all.insert(QStringLiteral("version"), QStringLiteral(TESSERA_VERSION));
    return QString::fromLatin1(
        QCryptographicHash::hash(QJsonDocument(all).toJson(QJsonDocument::Compact),
                                 QCryptographicHash::Sha256)
            .toHex());
}

} // namespace corvane
