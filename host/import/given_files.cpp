// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/import/given_files.h"

#include "host/derivatives/run_companions.h"
#include "host/derivatives/run_files.h"
#include "host/derivatives/run_images.h"
#include "host/files/file_kind.h"
#include "host/files/input_error.h"
#include "host/import/cleaning_choice.h"
#include "host/import/file_role.h"
#include "host/import/import_name.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <map>

namespace corvane
{

namespace
{

// ---- folders

bool hasRuns(const QString &dataset, const QStringList &participants)
{
    return std::any_of(participants.begin(), participants.end(), [&](const QString &participant) {
        return !runImages(dataset, participant).empty();
    });
}

/// The folder itself, else the one of those in its "derivatives" with runs that can be imported.
QString datasetIn(const QString &folder)
{
    QStringList places{folder};
    const QDir derivatives(QDir(folder).filePath(QStringLiteral("derivatives")));
    for (const QString &name : derivatives.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name))
        places += derivatives.filePath(name);
    for (const QString &place : qAsConst(places))
        if (hasRuns(place, participantsOf(place)))
            return place;
    return participantsOf(folder).isEmpty() ? QString() : folder;
}

/// The folder as a part of a dataset: "sub-01" or what lies in it.
bool isPartOfDataset(const QString &folder, GivenFiles &given)
{
    for (QDir place(folder); !place.isRoot();) {
        const QString name = place.dirName();
        if (!place.cdUp())
            return false;
        const QString participant = name.mid(4);
        if (name.startsWith(QLatin1String("sub-")) && hasRuns(place.path(), {participant})) {
            given.dataset = place.path();
            given.participants += participant;
            return true;
        }
    }
    return false;
}

QString unknownText(const QString &name)
{
    return QStringLiteral("%1 is of no kind that this program knows: it opens %2, and folders of "
                          "these")
        .arg(quoted(name), knownEndings());
}

/// The files of a folder that is no dataset.
QStringList filesIn(const QString &folder, QStringList &faults)
{
    QStringList files;
    for (const QFileInfo &file : QDir(folder).entryInfoList(QDir::Files, QDir::Name))
        if (fileKind(file.fileName()) != FileKind::Other)
            files += file.filePath();
    if (files.isEmpty())
        faults += QStringLiteral("%1: a folder without a file that can be opened: %2")
                      .arg(printable(folder, 4096), knownEndings());
    return files;
}

/// A dataset, or a part of one, else the files in it.
QStringList openedFolder(const QString &folder, GivenFiles &given)
{
    if (isPartOfDataset(folder, given))
        return {};
    const QString dataset = datasetIn(folder);
    if (dataset.isEmpty())
        return filesIn(folder, given.faults);
    given.dataset = dataset;
    return {};
}

QStringList withoutFolders(const QStringList &paths, GivenFiles &given)
{
    QStringList files;
    for (const QString &path : paths) {
        if (!QFileInfo(path).isDir()) {
            files += path;
            continue;
        }
        try {
            files += openedFolder(QDir(path).absolutePath(), given);
        } catch (const InputError &error) {
            given.faults += QString::fromUtf8(error.what());
        }
    }
    return files;
}

bool isForeignImage(const QString &path)
{
    return fileKind(path) == FileKind::Nifti || fileKind(path) == FileKind::Nrrd;
}

// ---- requests

using Roles = std::map<FileRole, QStringList>;

Roles rolesOf(const QStringList &files, QStringList &faults)
{
    Roles roles;
    for (const QString &file : files) {
        try {
            const FileRole role = roleOf(file);
            if (role == FileRole::None)
                faults += QStringLiteral("%1: a table of no known kind: tables of events have the "
                                         "columns onset and duration, of labels index and name, of "
                                         "places x, y and z; those of confounds are named so")
                              .arg(printable(file, 4096));
            roles[role] += file;
        } catch (const InputError &error) {
            faults += QString::fromUtf8(error.what());
        }
    }
    return roles;
}

/// Of some files that which belongs to a run by its name; where there is one alone for one run, it
/// is that whatever its name.
QString ownFile(const QString &run, const QStringList &files, bool isOnlyRun)
{
    if (isOnlyRun && files.size() == 1)
        return files.front();
    std::vector<BidsName> names;
    for (const QString &file : files)
        if (!bidsName(file).entities.isEmpty())
            names.push_back(bidsName(file));
    const std::vector<BidsName> closest = closestTo(bidsName(run), names);
    for (const QString &file : files)
        if (!closest.empty() && bidsName(file).file == closest.front().file)
            return file;
    return {};
}

/// An anatomy may say more than a run does: "acq-mprage". It must be of the same participant.
QString ownAnatomy(const QString &run, const QStringList &anatomies)
{
    if (anatomies.size() <= 1)
        return anatomies.value(0);
    for (const QString &anatomy : anatomies)
        if (entityOf(anatomy, QStringLiteral("sub")) == entityOf(run, QStringLiteral("sub")))
            return anatomy;
    return anatomies.front();
}

std::vector<VoiSource> voiSourcesOf(Roles &roles, QStringList &faults)
{
    std::vector<VoiSource> sources;
    QStringList &tables = roles[FileRole::Labels];
    const QStringList &atlases = roles[FileRole::Atlas];
    for (const QString &atlas : atlases) {
        VoiSource source{VoiSource::Atlas, atlas, labelsOf(atlas)};
        for (const QString &table : qAsConst(tables))
            if (nameWithoutEnding(table) == nameWithoutEnding(atlas) || atlases.size() == 1)
                source.labels = table;
        tables.removeAll(source.labels);
        sources.push_back(source);
    }
    for (const QString &table : qAsConst(tables))
        faults += QStringLiteral("%1: a table of labels of none of the atlases")
                      .arg(printable(table, 4096));
    for (const QString &mask : roles[FileRole::Mask])
        sources.push_back({VoiSource::Mask, mask});
    for (const QString &places : roles[FileRole::Spheres])
        sources.push_back({VoiSource::Spheres, places});
    return sources;
}

} // namespace

GivenFiles sortGivenFiles(const QStringList &paths)
{
    GivenFiles given;
    const QStringList files = withoutFolders(paths, given);
    const auto images = std::count_if(files.begin(), files.end(), isForeignImage);
    for (const QString &file : files) {
        const FileKind kind = fileKind(file);
        if (kind == FileKind::Other)
            given.faults += unknownText(QFileInfo(file).fileName());
        else if (kind == FileKind::Table || (isForeignImage(file) && (images > 1 || isRun(file))))
            given.toImport += QFileInfo(file).absoluteFilePath();
        else
            given.toOpen += file;
    }
    // Beside a table or a run the one anatomy is that of the import.
    if (!given.toImport.isEmpty() && images == 1)
        for (const QString &file : files)
            if (isForeignImage(file) && given.toOpen.removeAll(file) > 0)
                given.toImport += QFileInfo(file).absoluteFilePath();
    return given;
}

std::vector<ImportRequest> requestsOf(const QStringList &files, QStringList &faults)
{
    Roles roles = rolesOf(files, faults);
    ImportRequest common;
    common.voiSources = voiSourcesOf(roles, faults);
    QStringList runs = roles[FileRole::Run];
    const bool isOnlyRun = runs.size() < 2;
    if (runs.isEmpty())
        runs += QString();
    std::vector<ImportRequest> requests;
    for (const QString &run : qAsConst(runs)) {
        ImportRequest request = common;
        request.functional = run;
        request.anatomy = ownAnatomy(run, roles[FileRole::Anatomy]);
        request.events = ownFile(run, roles[FileRole::Events], isOnlyRun);
        request.confounds = ownFile(run, roles[FileRole::Confounds], isOnlyRun);
        request.name = run.isEmpty() ? QString() : defaultImportName(run);
        requests.push_back(request);
    }
    return requests;
}

} // namespace corvane
