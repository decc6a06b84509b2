// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/import/import_plan.h"

#include "dataset/counted.h"
#include "host/files/events_table.h"
#include "host/files/functional_run.h"
#include "host/files/image_grid.h"
#include "host/files/image_reader.h"
#include "host/files/input_error.h"
#include "host/files/sample_conversion.h"
#include "host/files/text_check.h"
#include "host/import/atlas.h"
#include "host/import/cleaned_run.h"
#include "host/import/import_provenance.h"
#include "host/import/run_mean.h"
#include "host/import/sphere_table.h"

#include <algorithm>
#include <limits>
#include <set>

namespace corvane
{

namespace
{

// ---- texts

QString decimal(double number)
{
    return QString::fromLatin1(shortestDecimal(number));
}

QString noteOn(const QString &path, const QString &text)
{
    return QStringLiteral("%1: %2").arg(printable(path, 4096), text);
}

// ---- the run

GridSize gridSize(const NiftiHeader &run)
{
    return {run.dim[0], run.dim[1], run.dim[2]};
}

FunctionalGrid layRun(const ImportRequest &request, const NiftiHeader &run, const Anatomy &anatomy,
                      QStringList &notes)
{
    const QString &path = request.functional;
    const GridSize size = gridSize(run);
    const Eigen::Affine3d toCube = anatomy.toWorld.inverse() * run.toWorld;
    FunctionalGrid grid = layFunctionalGrid(
        toCube, size, request.resolution.value_or(nearestResolution(toCube)), path);
    if (grid.voxelsCut > 0)
        notes += noteOn(
            path, QStringLiteral("%1 of %2 voxels lie outside the cube of 256 mm and are cut off")
                      .arg(grid.voxelsCut)
                      .arg(run.voxelsPerVolume()));
    if (!anatomy.field.intersects(gridBounds(toCube, size, 0.5)))
        notes += noteOn(path, QStringLiteral("the run does not overlap the anatomy %1")
                                  .arg(printable(request.anatomy, 4096)));
    return grid;
}

void checkPointsOutside(const FunctionalGrid &grid, const QString &path, QStringList &notes)
{
    const qint64 outside = VolumeSampler(grid).pointsOutside();
    if (outside == grid.sampleCount())
        throw InputError(
            path, QStringLiteral("position relative to the anatomy"),
            QStringLiteral("no voxel at a point of the lattice of %1 mm").arg(grid.resolution),
            QStringLiteral("a run that overlaps the anatomy's cube"));
    if (outside > 0)
        notes += noteOn(path, QStringLiteral("%1 of %2 lattice points lie outside what was "
                                             "recorded: their samples are 0 and no VOI holds them")
                                  .arg(outside)
                                  .arg(grid.sampleCount()));
}

// ---- the VOIs

bool sameGrid(const GridSize &size, const Eigen::Affine3d &toWorld, const GridSize &otherSize,
              const Eigen::Affine3d &otherToWorld)
{
    // Half a tenth of a millimetre: what headers of one scan differ by.
    const Eigen::Affine3d between = otherToWorld.inverse() * toWorld;
    return size == otherSize && latticeMap(between, size, 1) &&
           between.isApprox(Eigen::Affine3d::Identity(), 1e-3);
}

/// A file of VOIs with what is quickly read of it.
struct ReadSource {
    VoiSource source;
    LabelTable labels;           ///< of an atlas
    std::vector<Sphere> spheres; ///< of a table of these
};

std::vector<ReadSource> readSources(const ImportRequest &request, QStringList &notes)
{
    std::vector<ReadSource> sources;
    for (const VoiSource &source : request.voiSources) {
        sources.push_back({source, {}, {}});
        if (source.kind == VoiSource::Spheres)
            sources.back().spheres = readSpheres(source.file, notes);
        else if (!source.labels.isEmpty())
            sources.back().labels = readLabelTable(source.labels, notes);
    }
    return sources;
}

/// All that is not background is one label, whose name is the file's.
LabelTable makeMask(Image3d<qint32> &image, const QString &path, QStringList &notes)
{
    std::set<qint32> values;
    for (qint32 &value : image.voxels) {
        if (value == 0)
            continue;
        if (values.size() < 2)
            values.insert(value);
        value = 1;
    }
    if (values.size() > 1)
        notes += noteOn(path, QStringLiteral("the mask holds more than one value: all but 0 are "
                                             "one VOI; as an atlas it gives one for each"));
    LabelTable table;
    table[1].name = nameWithoutEnding(path);
    return table;
}

void addAtlas(ImportPlan &plan, const ReadSource &read, const Eigen::Affine3d &cubeToWorld)
{
    const QString &path = read.source.file;
    const bool isMask = read.source.kind == VoiSource::Mask;
    Image3d<qint32> atlas = readLabels(path, plan.notes);
    const LabelTable labels = isMask ? makeMask(atlas, path, plan.notes) : read.labels;
    if (!sameGrid(atlas.size, atlas.toWorld, gridSize(plan.run), plan.run.toWorld))
        plan.notes +=
            noteOn(path, QStringLiteral("the %1 (%2) has another grid than the run (%3): its "
                                        "labels are taken by nearest neighbour")
                             .arg(isMask ? QStringLiteral("mask") : QStringLiteral("atlas"),
                                  gridText(atlas.size, atlas.toWorld),
                                  gridText(gridSize(plan.run), plan.run.toWorld)));
    const VoiSet set =
        voisOfAtlas(atlas, labels, plan.grid, cubeToWorld, plan.request.voiGrid, path, plan.notes,
                    &plan.labelCounts, static_cast<int>(plan.vois.vois.size()));
    plan.vois.vois.insert(plan.vois.vois.end(), set.vois.begin(), set.vois.end());
}

void addSpheres(ImportPlan &plan, const ReadSource &read, const Eigen::Affine3d &cubeToWorld)
{
    const VoiSet set =
        voisOfSpheres(read.spheres, plan.grid, cubeToWorld, plan.request.voiGrid, read.source.file,
                      plan.notes, plan.labelCounts, static_cast<int>(plan.vois.vois.size()));
    plan.vois.vois.insert(plan.vois.vois.end(), set.vois.begin(), set.vois.end());
}

void planVois(ImportPlan &plan, const std::vector<ReadSource> &sources,
              const Eigen::Affine3d &cubeToWorld)
{
    for (const ReadSource &read : sources)
        (read.source.kind == VoiSource::Spheres ? addSpheres : addAtlas)(plan, read, cubeToWorld);
}

// ---- the anatomy

/// Without an image of it the run's mean stands in.
Image3d<float> anatomyImage(const ImportRequest &request, QStringList &notes,
                            const ProgressWatch &watch)
{
    if (!request.anatomy.isEmpty())
        return readImage(request.anatomy, notes);
    Image3d<float> mean = runMean(request.functional, notes, watch);
    notes += noteOn(request.functional,
                    QStringLiteral("without an anatomy the mean of the run stands in its place"));
    return mean;
}

Anatomy cubeOf(const Image3d<float> &image, const ImportRequest &request, QStringList &notes)
{
    if (!request.anatomy.isEmpty())
        return resampleAnatomy(image, request.anatomy, notes);
    QStringList ofMean; // that it is scaled, and cut off as the run is, which is told there
    return resampleAnatomy(image, request.functional, ofMean);
}

// ---- what the files hold

QString voiText(const VoiSet &set, VoiGrid grid)
{
    std::size_t voxels = 0;
    for (const Voi &voi : set.vois)
        voxels += voi.voxels.size();
    const auto empty = std::count_if(set.vois.begin(), set.vois.end(),
                                     [](const Voi &voi) { return voi.voxels.empty(); });
    const bool isFunctional = grid == VoiGrid::Functional;
    return QStringLiteral("%1, %2, %3 empty")
        .arg(counted(qint64(set.vois.size()), "VOI"),
             counted(qint64(voxels), isFunctional ? "functional voxel" : "1 mm voxel"),
             counted(empty, "VOI"));
}

QString protocolText(const Prt &protocol)
{
    std::size_t intervals = 0;
    for (const PrtCondition &condition : protocol.conditions)
        intervals += condition.intervals.size();
    return QStringLiteral("%1, %2").arg(counted(qint64(protocol.conditions.size()), "condition"),
                                        counted(qint64(intervals), "interval"));
}

QString timeCourseText(const ImportPlan &plan)
{
    const FunctionalGrid &grid = plan.grid;
    return QStringLiteral("%1 x %2 x %3 samples %4 mm apart, %5 volumes %6 s apart, %7, %8")
        .arg(QString::number(grid.size[0]), QString::number(grid.size[1]),
             QString::number(grid.size[2]), QString::number(grid.resolution),
             QString::number(plan.keptVolumes()), decimal(plan.repetitionTime),
             plannedVtc(plan).type == VtcInfo::Short ? QStringLiteral("short")
                                                     : QStringLiteral("float"),
             (grid.copied
                  ? QStringLiteral("copied")
                  : QStringLiteral("interpolated from voxels of ") + voxelText(plan.run.toWorld)) +
                 (plan.cleaning ? QStringLiteral(", cleaned: ") +
                                      cleaningText(*plan.request.cleaning, *plan.cleaning)
                                : QString()));
}

void planFile(ImportPlan &plan, FileKind kind, const QString &holds)
{
    plan.files.push_back({kind, fileName(plan.request.name, kind), holds});
}

} // namespace

bool ImportPlan::writes(FileKind kind) const
{
    return std::any_of(files.begin(), files.end(),
                       [kind](const PlannedFile &file) { return file.kind == kind; });
}

int ImportPlan::keptVolumes() const
{
    return cleaning ? static_cast<int>(cleaning->design.rows.size()) : volumes();
}

VolumeChoice ImportPlan::volumeChoice() const
{
    const signals::Volumes &all = cleaning->selection.volumes;
    const signals::Flags kept = all.kept();
    VolumeChoice choice;
    choice.displacement.assign(std::size_t(volumes()), std::numeric_limits<double>::quiet_NaN());
    std::copy(all.fd.begin(), all.fd.end(), choice.displacement.begin());
    for (const bool stays : kept)
        choice.leftOut.push_back(!stays);
    choice.fdThreshold = cleaning->selection.thresholds.fd;
    return choice;
}

ImportPlan planImport(const ImportRequest &request, const ProgressWatch &watch)
{
    ImportPlan plan;
    plan.request = request;
    plan.notes += provenanceNotes(request);
    plan.run = readRunHeader(request.functional, plan.notes);
    plan.repetitionTime =
        runRepetitionTime(request.functional, plan.run, request.repetitionTime, plan.notes);
    // What is quickly known to be wrong is found before the long work.
    if (request.cleaning)
        plan.cleaning = std::make_shared<const RunCleaning>(
            planImportCleaning(*request.cleaning, plan.volumes(), plan.repetitionTime, plan.notes));
    const EventsTable events =
        request.events.isEmpty() ? EventsTable() : readEvents(request.events, plan.notes);
    const std::vector<ReadSource> sources = readSources(request, plan.notes);

    Image3d<float> image = anatomyImage(request, plan.notes, watch);
    const Anatomy anatomy = cubeOf(image, request, plan.notes);
    image.voxels = {};
    const Provenance provenance = provenanceOf(request);
    plan.anatomy = anatomy.vmr;
    plan.anatomy.provenance = plan.vois.provenance = provenance;
    planFile(plan, FileKind::Vmr,
             QStringLiteral("%1, %2").arg(gridText(image.size, image.toWorld),
                                          anatomy.copied ? QStringLiteral("copied")
                                                         : QStringLiteral("interpolated to 1 mm")));
    plan.grid = layRun(request, plan.run, anatomy, plan.notes);
    if (!request.voiSources.empty()) {
        planVois(plan, sources, anatomy.toWorld);
        planFile(plan, FileKind::Voi, voiText(plan.vois, request.voiGrid));
    }
    if (!request.events.isEmpty()) {
        plan.protocol = protocolFromEvents(events, request.name, plan.repetitionTime,
                                           plan.volumes(), plan.notes);
        if (plan.cleaning)
            plan.protocol =
                renumberedProtocol(plan.protocol, plan.cleaning->design.rows, plan.notes);
        plan.protocol.provenance = provenance;
        planFile(plan, FileKind::Prt, protocolText(plan.protocol));
    }
    checkPointsOutside(plan.grid, request.functional, plan.notes);
    planFile(plan, FileKind::Vtc, timeCourseText(plan));
    plan.notes.removeDuplicates(); // one file may serve twice
    return plan;
}

VtcInfo uncleanedVtc(const ImportPlan &plan)
{
    const FunctionalGrid &grid = plan.grid;
    const auto end = [&](int axis) { return grid.start[axis] + grid.resolution * grid.size[axis]; };
    VtcInfo info;
    info.resolution = grid.resolution;
    info.xStart = grid.start[0];
    info.yStart = grid.start[1];
    info.zStart = grid.start[2];
    info.xEnd = end(0);
    info.yEnd = end(1);
    info.zEnd = end(2);
    info.nrOfVolumes = plan.volumes();
    info.type = grid.copied && fitsShort(plan.run) ? VtcInfo::Short : VtcInfo::Float;
    info.repetitionTime = plan.repetitionTime;
    info.provenance = plan.anatomy.provenance;
    return info;
}

VtcInfo plannedVtc(const ImportPlan &plan)
{
    VtcInfo info = uncleanedVtc(plan);
    if (plan.cleaning) {
        info.nrOfVolumes = plan.keptVolumes();
        info.type = VtcInfo::Float;
        info.cleaning = ledgerOf(*plan.request.cleaning, *plan.cleaning);
    }
    return info;
}

} // namespace corvane
