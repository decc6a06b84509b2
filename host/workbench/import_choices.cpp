// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/workbench/import_choices.h"

#include "host/derivatives/bids_names.h"
#include "host/import/import_name.h"
#include "host/import/import_provenance.h"

#include <QDir>
#include <QFileInfo>
#include <QSettings>
#include <QStandardPaths>

namespace corvane
{

namespace
{

/// An atlas or table that serves more than one subject.
bool isCommon(const VoiSource &source)
{
    return entityOf(source.file, QStringLiteral("sub")).isEmpty() &&
           QFileInfo(source.file).isFile();
}

} // namespace

ImportChoices rememberedChoices()
{
    QSettings settings;
    settings.beginGroup(QStringLiteral("import"));
    ImportChoices choices;
    choices.voiGrid = settings.value(QStringLiteral("everyMillimetre")).toBool()
                          ? VoiGrid::Anatomy
                          : VoiGrid::Functional;
    choices.strategy = settings.value(QStringLiteral("strategy")).toString();
    choices.fdThreshold = settings.value(QStringLiteral("fdThreshold")).toDouble();
    choices.folder = settings.value(QStringLiteral("folder")).toString();
    const int count = settings.beginReadArray(QStringLiteral("voiSources"));
    for (int n = 0; n < count; ++n) {
        settings.setArrayIndex(n);
        const int kind = settings.value(QStringLiteral("kind")).toInt();
        const VoiSource source{static_cast<VoiSource::Kind>(qBound(0, kind, 2)),
                               settings.value(QStringLiteral("file")).toString(),
                               settings.value(QStringLiteral("labels")).toString()};
        if (isCommon(source))
            choices.voiSources.push_back(source);
    }
    return choices;
}

void rememberChoices(const ImportChoices &choices)
{
    QSettings settings;
    settings.beginGroup(QStringLiteral("import"));
    settings.setValue(QStringLiteral("everyMillimetre"), choices.voiGrid == VoiGrid::Anatomy);
    settings.setValue(QStringLiteral("strategy"), choices.strategy);
    settings.setValue(QStringLiteral("fdThreshold"), choices.fdThreshold);
    settings.setValue(QStringLiteral("folder"), choices.folder);
    settings.remove(QStringLiteral("voiSources"));
    settings.beginWriteArray(QStringLiteral("voiSources"));
    int next = 0;
    for (const VoiSource &source : choices.voiSources) {
        if (!isCommon(source))
            continue;
        settings.setArrayIndex(next++);
        settings.setValue(QStringLiteral("kind"), int(source.kind));
        settings.setValue(QStringLiteral("file"), source.file);
        settings.setValue(QStringLiteral("labels"), source.labels);
    }
    settings.endArray();
}

QString folderOfSubjects()
{
    const QString last = QSettings().value(QStringLiteral("import/folder")).toString();
    return last.isEmpty()
               ? QDir(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation))
                     .filePath(QStringLiteral("Corvane"))
               : last;
}

QString proposedFolder(const ImportRequest &request)
{
    const QString subject = provenanceOf(request).subject;
    const QString name = isImportName(subject) ? subject : defaultImportName(request.functional);
    return QDir(folderOfSubjects()).filePath(name);
}

} // namespace corvane
