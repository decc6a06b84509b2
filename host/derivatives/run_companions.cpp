// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/derivatives/run_companions.h"

#include "host/derivatives/run_files.h"
#include "host/derivatives/run_images.h"
#include "host/files/file_kind.h"

#include <QDir>
#include <QFileInfo>
#include <algorithm>

namespace corvane
{

namespace
{

QString labelOf(const BidsName &name, const char *entity)
{
    return name.label(QLatin1String(entity));
}

/// The participant's own space, whose images mostly name none.
bool isOwnSpace(const QString &space)
{
    for (const char *name : {"", "T1w", "T2w", "anat", "individual"})
        if (space == QLatin1String(name))
            return true;
    return false;
}

bool isInSpaceOf(const BidsName &name, const BidsName &run)
{
    const QString space = labelOf(name, "space");
    return space == labelOf(run, "space") ||
           (isOwnSpace(space) && isOwnSpace(labelOf(run, "space")));
}

/// Folders of anatomies, that of the run's session first.
QStringList anatomyFolders(const QString &dataset, const StudyRun &run)
{
    const QDir participant(QDir(dataset).filePath(participantFolder(run.participant)));
    QStringList folders;
    if (!run.session.isEmpty())
        folders += participant.filePath(QStringLiteral("ses-%1/anat").arg(run.session));
    folders += participant.filePath(QStringLiteral("anat"));
    return folders;
}

/// The name with fewest entities, which says least that is special; null without one.
const BidsName *plainest(const std::vector<BidsName> &names)
{
    const auto least =
        std::min_element(names.begin(), names.end(), [](const BidsName &a, const BidsName &b) {
            return a.entities.size() < b.entities.size();
        });
    return least == names.end() ? nullptr : &*least;
}

std::vector<BidsName> inSpaceOf(const BidsName &run, const std::vector<BidsName> &names)
{
    std::vector<BidsName> found;
    std::copy_if(names.begin(), names.end(), std::back_inserter(found),
                 [&](const BidsName &name) { return isInSpaceOf(name, run); });
    return found;
}

QString anatomyIn(const ListedFolder &folder, const BidsName &run)
{
    for (const char *suffix : {"T1w", "T2w"}) {
        const std::vector<BidsName> images =
            inSpaceOf(run, filesOf(folder, QStringLiteral("preproc"), {QLatin1String(suffix)},
                                   imageEndings()));
        // Of images of one space the coarser ones name their resolution.
        if (const BidsName *const image = plainest(images))
            return QDir(folder.path).filePath(image->file);
    }
    return {};
}

/// Images of regions: without desc they are of tissues.
QString atlasIn(const ListedFolder &folder, const BidsName &run, bool isBesideRun)
{
    for (const char *desc : {"aparcaseg", "aseg"}) {
        std::vector<BidsName> images = inSpaceOf(
            run, filesOf(folder, QLatin1String(desc), {QStringLiteral("dseg")}, imageEndings()));
        if (isBesideRun)
            images = closestTo(run, onGridOf(run, images));
        if (const BidsName *const image = plainest(images))
            return QDir(folder.path).filePath(image->file);
    }
    return {};
}

/// The folder of the run in the dataset that the pipeline was given; empty where that cannot be
/// told from the place of the derivatives.
QString givenFolder(const QString &dataset, const StudyRun &run)
{
    const QString path = QFileInfo(dataset).absoluteFilePath();
    const int below = path.lastIndexOf(QLatin1String("/derivatives/"));
    return below < 0 ? QString() : path.left(below) + QLatin1Char('/') + run.folder;
}

QString eventsIn(const QString &folder, const BidsName &run)
{
    if (folder.isEmpty())
        return {};
    const std::vector<BidsName> tables =
        closestTo(run, filesOf(listed(folder), QString(), {QStringLiteral("events")},
                               {QStringLiteral(".tsv")}));
    return tables.size() == 1 ? QDir(folder).filePath(tables.front().file) : QString();
}

} // namespace

RunCompanions companionsOf(const QString &dataset, const StudyRun &run)
{
    const BidsName name = bidsName(run.bold);
    RunCompanions companions;
    companions.atlas = atlasIn(listed(QFileInfo(run.bold).path()), name, true);
    for (const QString &path : anatomyFolders(dataset, run)) {
        const ListedFolder folder = listed(path);
        if (companions.anatomy.isEmpty())
            companions.anatomy = anatomyIn(folder, name);
        if (companions.atlas.isEmpty())
            companions.atlas = atlasIn(folder, name, false);
    }
    if (!companions.atlas.isEmpty())
        companions.labels = labelsOf(companions.atlas, dataset);
    companions.events =
        run.events.isEmpty() ? eventsIn(givenFolder(dataset, run), name) : run.events;
    return companions;
}

QString labelsOf(const QString &atlas, const QString &dataset)
{
    const BidsName name = bidsName(atlas);
    const QString desc = labelOf(name, "desc");
    QStringList names{nameWithoutEnding(atlas)};
    if (!desc.isEmpty())
        names += QStringLiteral("desc-%1_%2").arg(desc, name.suffix);
    QStringList folders{QFileInfo(atlas).path()};
    if (!dataset.isEmpty())
        folders += dataset;
    for (const QString &folder : qAsConst(folders))
        for (const QString &stem : qAsConst(names))
            for (const char *ending : {".tsv", ".ctab", ".txt"}) {
                QString path = QDir(folder).filePath(stem + QLatin1String(ending));
                if (QFileInfo(path).isFile())
                    return path;
            }
    return {};
}

} // namespace corvane
