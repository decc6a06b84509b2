// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/derivatives/run_index.h"

#include "host/derivatives/absent_runs.h"
#include "host/files/input_error.h"
#include "host/files/listing.h"

#include <QDir>
#include <QFileInfo>
#include <algorithm>

namespace corvane
{

namespace
{

void requireFolder(const QString &dataset)
{
    const QFileInfo info(dataset);
    if (!info.isDir())
        throw InputError(dataset, QStringLiteral("opening"),
                         info.exists() ? QStringLiteral("no folder")
                                       : QStringLiteral("nothing of this name"),
                         QStringLiteral("the folder of a dataset"));
}

/// What an error says, with places in the dataset named from there.
QString withoutFolder(const InputError &error, const QString &dataset)
{
    return QString::fromUtf8(error.what()).replace(dataset + QLatin1Char('/'), QString());
}

void giveReason(StudyRun &run, const QString &reason)
{
    if (run.reason.isEmpty())
        run.reason = reason;
}

QStringList fileNames(const std::vector<BidsName> &names)
{
    QStringList files;
    for (const BidsName &name : names)
        files += name.file;
    return files;
}

/// The path of the one file that belongs to the run; empty without one. More than one is a reason
/// not to compute the run, and so is a link to content that was not fetched.
QString pathOf(const RunImage &image, const std::vector<BidsName> &fitting, const QString &what,
               StudyRun &run)
{
    if (fitting.empty())
        return {};
    const QString name = fitting.front().file;
    QString path = QDir(image.files->path).filePath(name);
    if (fitting.size() > 1)
        giveReason(
            run, QStringLiteral("more than one %1: %2").arg(what, enumerated(fileNames(fitting))));
    else if (!QFileInfo::exists(path))
        giveReason(run, name + QStringLiteral(": a link that leads nowhere"));
    return path;
}

void addConfounds(const RunImage &image, const RunFilter &filter, StudyRun &run)
{
    const std::vector<BidsName> tables = filesOf(
        *image.files, QStringLiteral("confounds"),
        {QStringLiteral("timeseries"), QStringLiteral("regressors")}, {QStringLiteral(".tsv")});
    run.confounds =
        pathOf(image, closestTo(image.name, tables), QStringLiteral("table of confounds"), run);
    if (run.confounds.isEmpty() && filter.confoundsNeeded)
        giveReason(
            run,
            QStringLiteral("no table of confounds; found: %1").arg(enumerated(fileNames(tables))));
}

void addMask(const RunImage &image, StudyRun &run)
{
    const std::vector<BidsName> masks =
        filesOf(*image.files, QStringLiteral("brain"), {QStringLiteral("mask")}, imageEndings());
    run.mask = pathOf(image, closestTo(image.name, onGridOf(image.name, masks)),
                      QStringLiteral("mask"), run);
}

void addEvents(const RunImage &image, StudyRun &run)
{
    const std::vector<BidsName> tables =
        filesOf(*image.files, QString(), {QStringLiteral("events")}, {QStringLiteral(".tsv")});
    run.events =
        pathOf(image, closestTo(image.name, tables), QStringLiteral("table of events"), run);
}

void addRepetitionTime(const QString &dataset, const RunImage &image, Sidecars &sidecars,
                       StudyRun &run)
{
    try {
        run.repetitionTime = sidecars.repetitionTime(image.folder, image.name);
    } catch (const InputError &error) {
        giveReason(run, withoutFolder(error, dataset));
    }
}

/// Outputs are named after the entities, which must be those of the folders.
void requireOwnPlace(const RunImage &image, StudyRun &run)
{
    QString own = participantFolder(image.name.label(QStringLiteral("sub")));
    if (!run.session.isEmpty())
        own += QStringLiteral("/ses-") + run.session;
    own += QStringLiteral("/func");
    if (own != run.folder)
        giveReason(
            run,
            QStringLiteral("%1: lies in %2, expected %3").arg(image.name.file, run.folder, own));
}

StudyRun studyRun(const QString &dataset, const QString &participant, const RunImage &image,
                  const RunFilter &filter, Sidecars &sidecars)
{
    StudyRun run;
    run.participant = participant;
    run.session = image.name.label(QStringLiteral("ses"));
    run.task = image.name.label(QStringLiteral("task"));
    run.space = image.name.label(QStringLiteral("space"));
    run.folder = image.folder;
    run.prefix = runPrefix(image.name.file);
    requireOwnPlace(image, run);
    run.bold = pathOf(image, {image.name}, QStringLiteral("image"), run);
    addConfounds(image, filter, run);
    addMask(image, run);
    addEvents(image, run);
    addRepetitionTime(dataset, image, sidecars, run);
    return run;
}

/// Images of one run, packed and not, would have the same outputs.
void refuseTwins(std::vector<StudyRun> &runs)
{
    for (std::size_t n = 1; n < runs.size(); ++n)
        if (runs[n - 1].prefix == runs[n].prefix && runs[n - 1].folder == runs[n].folder)
            for (StudyRun *run : {&runs[n - 1], &runs[n]})
                giveReason(*run, QStringLiteral("more than one image of the run: %1, %2")
                                     .arg(QFileInfo(runs[n - 1].bold).fileName(),
                                          QFileInfo(runs[n].bold).fileName()));
}

std::vector<StudyRun> rowsOf(const QString &dataset, const QString &participant,
                             const RunFilter &filter, const FilterFile &file, Sidecars &sidecars)
{
    if (!hasParticipant(dataset, participant))
        return {
            absentRow(participant, QStringLiteral("no folder ") + participantFolder(participant))};
    std::vector<RunImage> images;
    try {
        images = runImages(dataset, participant);
    } catch (const InputError &error) {
        return {absentRow(participant, withoutFolder(error, dataset))};
    }
    std::vector<RunImage> matching;
    std::copy_if(images.begin(), images.end(), std::back_inserter(matching),
                 [&](const RunImage &image) { return isAskedFor(image.name, filter, file); });
    if (matching.empty())
        return {absentParticipant(participant, images, filter)};
    std::vector<StudyRun> rows;
    for (const RunImage &image : matching)
        rows.push_back(studyRun(dataset, participant, image, filter, sidecars));
    refuseTwins(rows);
    for (StudyRun &row : absentLabels(participant, images, matching, filter))
        rows.push_back(std::move(row));
    return rows;
}

} // namespace

QStringList participantsOf(const QString &dataset)
{
    requireFolder(dataset);
    QStringList participants;
    for (const QString &folder :
         namesInFolder(dataset, {QStringLiteral("sub-?*")}, Listed::Folders))
        participants += folder.mid(4);
    return participants;
}

std::vector<StudyRun> indexRuns(const QString &dataset, const RunFilter &filter)
{
    const QString root = QDir::cleanPath(dataset);
    requireFolder(root);
    const FilterFile file =
        filter.filterFile.isEmpty() ? FilterFile() : FilterFile(filter.filterFile);
    QStringList participants =
        filter.participants.isEmpty() ? participantsOf(root) : filter.participants;
    participants.sort();
    participants.removeDuplicates();
    Sidecars sidecars(root);
    std::vector<StudyRun> runs;
    for (const QString &participant : participants)
        for (StudyRun &row : rowsOf(root, participant, filter, file, sidecars))
            runs.push_back(std::move(row));
    return runs;
}

} // namespace corvane
