// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/compute/graph_files.h"

#include "dataset/counted.h"
#include "engine/graph_measures.h"
#include "host/compute/matrix_table.h"
#include "host/files/csv_text.h"
#include "host/files/output_file.h"
#include "host/files/output_folder.h"

#include <QElapsedTimer>

#include <algorithm>
#include <cmath>
#include <nodalis/nodalis.h>
#include <thread>
#include <vector>

namespace corvane
{

namespace
{

QByteArray featureTable(const GraphTable &graph, const GraphRequest &request,
                        const MeasureWatch &watch)
{
    QByteArray table = "node,name";
    std::vector<Eigen::ArrayXf> columns;
    for (const GraphMeasure &measure : request.measures) {
        table += QByteArray(",") + measure.column;
        const ProgressWatch ofMeasure = watch ? watch(measure) : ProgressWatch();
        columns.push_back(
            columnOf(measure, graph.weights, graphEffort(request.threads, ofMeasure)));
    }
    table += '\n';
    for (int node = 0; node < graph.weights.rows(); ++node) {
        const QByteArray number = QByteArray::number(node);
        table += number + ',' + (graph.names.isEmpty() ? number : csvField(graph.names[node]));
        for (const Eigen::ArrayXf &column : columns)
            table += ',' + csvField(column(node));
        table += '\n';
    }
    return table;
}

} // namespace

nodalis::Effort graphEffort(int threads, const ProgressWatch &watch)
{
    nodalis::Effort effort;
    effort.threads = threads;
    if (watch)
        effort.progress = [watch](double share) { return watch(qint64(share * 1000), 1000); };
    return effort;
}

QStringList writeGraphFiles(const QString &path, const GraphTable &graph,
                            const GraphRequest &request, const MeasureWatch &watch,
                            const StepWatch &steps)
{
    OutputFolder folder(path, QStringLiteral("graph"));
    writeFile(folder.path(QStringLiteral("features.csv")), featureTable(graph, request, watch));
    if (request.withTree) {
        const ProgressWatch ofTree = beginStep(steps, QStringLiteral("spanning tree"));
        const Eigen::MatrixXf tree =
            std::get<0>(nodalis::mst::minimum_spanning_tree(graph.weights, false, true));
        writeMatrixTable(folder.path(QStringLiteral("mst.csv")), tree, graph.names, graph.names,
                         ofTree);
    }
    return folder.commit();
}

double secondsOfLocalEfficiency(const Eigen::MatrixXf &weights, int threads)
{
    constexpr int nodesOfTrial = 400;
    const Eigen::MatrixXf trial = Eigen::MatrixXf::Ones(nodesOfTrial, nodesOfTrial);
    QElapsedTimer timer;
    timer.start();
    nodalis::nodal_global_efficiency(trial);
    const double secondsOfTrial = double(timer.nsecsElapsed()) * 1e-9;
    const int processors =
        threads > 0 ? threads : std::max(1, int(std::thread::hardware_concurrency()));
    return nodalis::local_efficiency_relaxations(weights) / std::pow(nodesOfTrial, 3) *
           secondsOfTrial / processors;
}

QStringList graphNotes(const Eigen::MatrixXf &weights)
{
    qint64 infinite = 0;
    qint64 unequal = 0;
    qint64 negative = 0;
    for (Eigen::Index j = 0; j < weights.cols(); ++j) {
        for (Eigen::Index i = 0; i < j; ++i) {
            const float upper = weights(i, j);
            const float lower = weights(j, i);
            const bool bothFinite = std::isfinite(upper) && std::isfinite(lower);
            infinite += bothFinite ? 0 : 1;
            unequal += bothFinite && upper != lower ? 1 : 0;
            negative += upper < 0 || lower < 0 ? 1 : 0;
        }
    }
    QStringList notes;
    if (infinite > 0)
        notes += QStringLiteral("%1 with a weight that is not finite; it counts as 0")
                     .arg(counted(infinite, "pair of nodes", "pairs of nodes"));
    if (unequal > 0)
        notes += QStringLiteral("%1 with two different weights; their mean is taken")
                     .arg(counted(unequal, "pair of nodes", "pairs of nodes"));
    if (negative > 0)
        notes += QStringLiteral("%1 with a negative weight; only degree, strength and eigenvector "
                                "centrality take it into account")
                     .arg(counted(negative, "pair of nodes", "pairs of nodes"));
    return notes;
}

} // namespace corvane
