// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/extract/connectome.h"

#include "dataset/counted.h"
#include "host/files/events_table.h"
#include "host/files/functional_run.h"
#include "host/files/image_reader.h"
#include "host/files/input_error.h"
#include "signals/cleaning.h"

#include <cmath>
#include <limits>

namespace corvane
{

namespace
{

using Eigen::MatrixXd;
using Index = Eigen::Index;

NodeMap readNodes(const ConnectomeRequest &request, const RunGrid &grid, QStringList &notes)
{
    const LabelTable names =
        request.labels.isEmpty() ? LabelTable() : readLabelTable(request.labels, notes);
    const Image3d<qint32> atlas = readLabels(request.atlas, notes);
    const Image3d<float> mask =
        request.mask.isEmpty() ? Image3d<float>() : readImage(request.mask, notes);
    return mapNodes(grid, atlas, request.atlas, names, mask, request.mask, notes);
}

std::vector<Index> coveredNodes(const std::vector<double> &coverage, double least)
{
    std::vector<Index> nodes;
    for (std::size_t node = 0; node < coverage.size(); ++node)
        if (coverage[node] > 0 && coverage[node] >= least)
            nodes.push_back(Index(node));
    return nodes;
}

void noteUncovered(const std::vector<Node> &nodes, const std::vector<Index> &covered, double least,
                   QStringList &notes)
{
    QStringList names;
    std::size_t next = 0;
    for (std::size_t node = 0; node < nodes.size(); ++node) {
        if (next < covered.size() && covered[next] == Index(node))
            ++next;
        else
            names += nodes[node].name;
    }
    if (!names.isEmpty())
        notes += QStringLiteral("%1 of %2 with a coverage below %3 and n/a everywhere: %4")
                     .arg(names.size())
                     .arg(counted(qint64(nodes.size()), "node"))
                     .arg(least)
                     .arg(names.join(QStringLiteral(", ")));
}

CleanedSeries cleanedBy(const signals::Design &design, const MatrixXd &series,
                        const std::vector<Index> &covered, const std::vector<Node> &nodes,
                        QStringList &notes)
{
    const signals::Cleaned cleaned = signals::clean(MatrixXd(series(Eigen::all, covered)), design);
    for (const Index column : cleaned.without_mean)
        notes += QStringLiteral("%1: its mean is 0, so is its percent signal change")
                     .arg(nodes[std::size_t(covered[std::size_t(column)])].name);
    CleanedSeries result;
    result.values = MatrixXd::Constant(cleaned.series.rows(), series.cols(),
                                       std::numeric_limits<double>::quiet_NaN());
    result.values(Eigen::all, covered) = cleaned.series;
    result.volumes = design.rows;
    result.degrees = design.ledger.degrees;
    return result;
}

Index firstSteady(const signals::Volumes &volumes)
{
    Index first = 0;
    while (first < volumes.count() && volumes.non_steady[first])
        ++first;
    return first;
}

void noteParts(const PartsRequest &request, const signals::Band &band,
               const std::vector<Part> &parts, std::size_t measures, QStringList &notes)
{
    if (request.window && band.high_pass > 0 && *request.window < 1 / band.high_pass)
        notes += QStringLiteral("windows of %1 s are shorter than the slowest waves that are "
                                "left, of %2 s: these look like changes from window to window")
                     .arg(*request.window)
                     .arg(1 / band.high_pass);
    qint64 unfilled = 0;
    for (const Part &part : parts)
        unfilled += part.filled ? 0 : qint64(measures);
    if (unfilled > 0)
        notes += QStringLiteral("%1 n/a: fewer than %2 volumes are kept, or half of a window")
                     .arg(counted(unfilled, "matrix is", "matrices are"))
                     .arg(signals::least_volumes);
    if (request.events)
        notes += QStringLiteral("matrices of conditions hold the shared response to the stimulus: "
                                "no regressors of the task were taken out");
}

/// All files but the samples of the run are read before these, so that what is wrong with them is
/// said at once.
struct Preparations {
    NiftiHeader header;
    double repetitionTime;
    RunGrid grid;
    NodeMap map;
    RunCleaning cleaning;
    PartsRequest parts;
};

Preparations prepare(const ConnectomeRequest &request, QStringList &notes)
{
    Preparations made;
    made.header = readRunHeader(request.run, notes);
    made.repetitionTime =
        runRepetitionTime(request.run, made.header, request.repetitionTime, notes);
    made.cleaning =
        planCleaning(request.cleaning, int(made.header.dim[3]), made.repetitionTime, notes);
    made.parts = request.parts;
    if (!request.events.isEmpty())
        made.parts.events = readEvents(request.events, notes);
    const NiftiHeader &header = made.header;
    made.grid = {request.run, {header.dim[0], header.dim[1], header.dim[2]}, header.toWorld};
    made.map = readNodes(request, made.grid, notes);
    return made;
}

} // namespace

bool Connectome::isCovered(std::size_t node) const
{
    return !std::isnan(cleaned.values(0, Index(node)));
}

Connectome makeConnectome(const ConnectomeRequest &request, const StepWatch &steps)
{
    Connectome result;
    Preparations made = prepare(request, result.notes);
    const signals::Design &design = made.cleaning.design;
    const signals::Volumes &volumes = made.cleaning.selection.volumes;
    const std::vector<Part> parts = partsOf(made.parts, design.rows, volumes.count(),
                                            firstSteady(volumes), made.repetitionTime);

    NodeSeries series =
        readNodeSeries(request.run, made.header, made.map,
                       beginStep(steps, QStringLiteral("reading the run")), result.notes);
    result.repetitionTime = made.repetitionTime;
    result.grid = made.grid;
    result.nodes = made.map.nodes;
    result.stretches = std::move(made.map.stretches);
    result.outside = std::move(made.map.outside);
    result.usedVoxels = series.used;
    result.coverage = series.coverage(result.nodes);
    result.cleaning = made.cleaning;
    const std::vector<Index> covered = coveredNodes(result.coverage, request.minCoverage);
    noteUncovered(result.nodes, covered, request.minCoverage, result.notes);
    if (covered.empty())
        throw InputError(request.run, QStringLiteral("coverage"),
                         QStringLiteral("no node with enough voxels"),
                         QStringLiteral("a run that covers regions of the atlas"));

    beginStep(steps, QStringLiteral("cleaning"));
    result.cleaned = cleanedBy(design, series.values, covered, result.nodes, result.notes);
    QStringList saidBefore;
    result.uncleaned = cleanedBy(uncleanedDesign(made.cleaning, made.repetitionTime), series.values,
                                 covered, result.nodes, saidBefore);
    result.series = std::move(series.values);
    noteParts(made.parts, design.band, parts, request.relationships.size(), result.notes);
    const ProgressWatch watch = beginStep(steps, QStringLiteral("matrices"));
    const auto count = qint64(parts.size() * request.relationships.size());
    for (const Part &part : parts)
        for (const Relationship relationship : request.relationships) {
            result.matrices.push_back(
                {part, relationship, matrixOf(result.cleaned, part, relationship, request.shrink)});
            tellProgress(watch, qint64(result.matrices.size()), count);
        }
    return result;
}

} // namespace corvane
