// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/example_study/example_study.h"

#include "host/example_study/run_confounds.h"
#include "host/example_study/run_motion.h"
#include "host/example_study/study_texts.h"
#include "host/example_study/whole_folder.h"
#include "host/files/output_file.h"
#include "statistics/parallel.h"

#include <mutex>

namespace corvane
{

namespace
{

using namespace example_study;

constexpr auto space = "_space-MNI152NLin2009cAsym_res-2";
constexpr auto atlas = "atlas/tpl-MNI152NLin2009cAsym_res-2_atlas-Example38_dseg";

QString text(const QByteArray &latin)
{
    return QString::fromLatin1(latin);
}

std::vector<Run> runsOf(int participants)
{
    std::vector<Run> runs;
    for (int number = 1; number <= participants; ++number)
        for (int session = 0; session < 2; ++session)
            for (const Task task : {Rest, NBack})
                runs.push_back({participant(number), session, task});
    return runs;
}

/// "sub-01/ses-a/func"
QString folderOf(const Run &run)
{
    return text(run.of.label() + "/ses-" + sessionNames[std::size_t(run.session)] + "/func");
}

void writeRun(const QString &folder, const Run &run, const Brain &brain)
{
    const QString stem = folder + QLatin1Char('/') + text(run.name());
    const QString image = stem + QLatin1String(space);
    const Eigen::MatrixXd motion = motionOf(run);
    const Samples samples = samplesOf(run, brain, motion);
    const std::vector<int> mask = maskOf(run, brain);
    writeBold(image + QStringLiteral("_desc-preproc_bold.nii.gz"), brain, samples);
    writeFile(image + QStringLiteral("_desc-preproc_bold.json"), boldJson(run.task));
    writeReference(image + QStringLiteral("_boldref.nii.gz"), brain, samples);
    writeMask(image + QStringLiteral("_desc-brain_mask.nii.gz"), brain, mask);
    writeFile(image + QStringLiteral("_desc-brain_mask.json"), maskJson());
    const ConfoundsFiles confounds = confoundsOf(brain, samples, mask, motion);
    writeFile(stem + QStringLiteral("_desc-confounds_timeseries.tsv"), confounds.table);
    writeFile(stem + QStringLiteral("_desc-confounds_timeseries.json"), confounds.json);
    if (run.task == NBack)
        writeFile(stem + QStringLiteral("_events.tsv"), eventsTable(run.of));
}

void writeDataset(const WholeFolder &folder, int participants)
{
    folder.make(QStringLiteral("atlas"));
    writeAtlas(folder.path(QLatin1String(atlas) + QStringLiteral(".nii.gz")));
    writeFile(folder.path(QLatin1String(atlas) + QStringLiteral(".tsv")), atlasTable());
    writeFile(folder.path(QStringLiteral("README.txt")), readme(participants));
    writeFile(folder.path(QStringLiteral("planted_edges.tsv")), plantedEdgesTable());
    writeFile(folder.path(QStringLiteral("participants.tsv")), participantsTable(participants));
    writeFile(folder.path(QStringLiteral("participants.json")), participantsJson());
    writeFile(folder.path(QStringLiteral("dataset_description.json")), datasetDescription());
}

} // namespace

void writeExampleStudy(const ExampleStudyRequest &request, const ProgressWatch &watch)
{
    WholeFolder folder(request.folder);
    writeDataset(folder, request.participants);
    const Brain brain = makeBrain();
    const std::vector<Run> runs = runsOf(request.participants);
    for (const Run &run : runs)
        folder.make(folderOf(run));
    std::mutex telling;
    qint64 done = 0;
    statistics::for_each_chunk(std::ptrdiff_t(runs.size()), request.threads,
                               [&](std::ptrdiff_t number, int) {
                                   const Run &run = runs[std::size_t(number)];
                                   writeRun(folder.path(folderOf(run)), run, brain);
                                   const std::lock_guard lock(telling);
                                   tellProgress(watch, ++done, qint64(runs.size()));
                               });
    folder.commit();
}

QString studySummary(const ExampleStudyRequest &request)
{
    return QStringLiteral("%1: %2 participants, %3 runs of %4 volumes, an atlas of %5 nodes")
        .arg(request.folder)
        .arg(request.participants)
        .arg(runsOf(request.participants).size())
        .arg(volumeCount)
        .arg(nodeCount);
}

} // namespace corvane
