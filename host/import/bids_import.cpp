// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/import/bids_import.h"

#include "host/derivatives/run_companions.h"
#include "host/derivatives/run_images.h"
#include "host/extract/run_cleaning.h"

#include <QDir>

namespace corvane
{

namespace
{

QString folderOf(const StudyRun &run, const QString &folder)
{
    const QString participant = QDir(folder).filePath(participantFolder(run.participant));
    return run.session.isEmpty() ? participant
                                 : participant + QStringLiteral("/ses-") + run.session;
}

/// Without an atlas the mask of the brain is the one VOI.
std::vector<VoiSource> ownSources(const StudyRun &run, const RunCompanions &companions)
{
    if (!companions.atlas.isEmpty())
        return {{VoiSource::Atlas, companions.atlas, companions.labels}};
    if (!run.mask.isEmpty())
        return {{VoiSource::Mask, run.mask}};
    return {};
}

std::shared_ptr<const CleaningRequest> ownCleaning(const CleaningRequest &common,
                                                   const StudyRun &run)
{
    CleaningRequest own = common;
    own.confounds = run.confounds;
    return std::make_shared<const CleaningRequest>(own);
}

ImportRequest requestOf(const QString &dataset, const StudyRun &run, const ImportRequest &common)
{
    const RunCompanions companions = companionsOf(dataset, run);
    ImportRequest request = common;
    request.anatomy = companions.anatomy;
    request.functional = run.bold;
    if (request.voiSources.empty())
        request.voiSources = ownSources(run, companions);
    request.events = companions.events;
    request.confounds = run.confounds;
    if (!request.repetitionTime)
        request.repetitionTime = run.repetitionTime;
    if (common.cleaning)
        request.cleaning = ownCleaning(*common.cleaning, run);
    request.name = run.prefix;
    request.folder = folderOf(run, common.folder);
    return request;
}

} // namespace

std::vector<BidsImport> bidsImports(const QString &dataset, const RunFilter &filter,
                                    const ImportRequest &request)
{
    const QString root = QDir::cleanPath(dataset);
    std::vector<BidsImport> imports;
    for (const StudyRun &run : indexRuns(root, filter)) {
        imports.push_back({run, {}, run.reason});
        if (!run.bold.isEmpty())
            imports.back().request = requestOf(root, run, request);
    }
    return imports;
}

ImportReport importRun(const BidsImport &import, const ProgressWatch &watch)
{
    // The mean that stands in for an anatomy takes a reading of its own.
    const int readings = import.request.anatomy.isEmpty() ? 2 : 1;
    return writeImport(planImport(import.request, watchOfPart(watch, 0, readings)),
                       watchOfPart(watch, readings - 1, readings));
}

void importRuns(const std::vector<BidsImport> &runs, const ProgressWatch &watch,
                ImportedRuns &imported)
{
    for (std::size_t n = 0; n < runs.size(); ++n) {
        tellProgress(watch, qint64(n), qint64(runs.size())); // also where none can be read
        try {
            imported.reports.push_back(
                importRun(runs[n], watchOfPart(watch, qint64(n), qint64(runs.size()))));
        } catch (const WorkStopped &) {
            throw;
        } catch (const std::exception &error) {
            imported.faults.push_back({n, QString::fromUtf8(error.what())});
        }
    }
}

} // namespace corvane
