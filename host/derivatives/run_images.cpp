// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/derivatives/run_images.h"

#include "host/files/listing.h"

#include <QDir>
#include <QFileInfo>

namespace corvane
{

namespace
{

bool isFolder(const QString &dataset, const QString &below)
{
    return QFileInfo(QDir(dataset).filePath(below)).isDir();
}

/// The folders with functional images, below the dataset: without sessions, then of each session.
QStringList functionalFolders(const QString &dataset, const QString &participant)
{
    const QString own = participantFolder(participant);
    QStringList parents{own};
    for (const QString &session :
         namesInFolder(QDir(dataset).filePath(own), {QStringLiteral("ses-*")}, Listed::Folders))
        parents += own + QLatin1Char('/') + session;
    QStringList folders;
    for (const QString &parent : parents) {
        const QString folder = parent + QStringLiteral("/func");
        if (isFolder(dataset, folder))
            folders += folder;
    }
    return folders;
}

bool isRun(const BidsName &name)
{
    return !name.label(QStringLiteral("space")).isEmpty() &&
           name.label(QStringLiteral("echo")).isEmpty();
}

} // namespace

const QStringList &imageEndings()
{
    static const QStringList endings{QStringLiteral(".nii"), QStringLiteral(".nii.gz")};
    return endings;
}

QString participantFolder(const QString &participant)
{
    return QStringLiteral("sub-") + participant;
}

bool hasParticipant(const QString &dataset, const QString &participant)
{
    return !participant.isEmpty() && !participant.contains(QLatin1Char('/')) &&
           !participant.contains(QLatin1Char('\\')) &&
           isFolder(dataset, participantFolder(participant));
}

std::vector<RunImage> runImages(const QString &dataset, const QString &participant)
{
    std::vector<RunImage> images;
    for (const QString &folder : functionalFolders(dataset, participant)) {
        const auto files =
            std::make_shared<const ListedFolder>(listed(QDir(dataset).filePath(folder)));
        for (const BidsName &name :
             filesOf(*files, QStringLiteral("preproc"), {QStringLiteral("bold")}, imageEndings()))
            if (isRun(name))
                images.push_back({name, folder, files});
    }
    return images;
}

} // namespace corvane
