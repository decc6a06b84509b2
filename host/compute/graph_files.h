// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/graph_measures.h"
#include "host/files/graph_table.h"
#include "host/files/progress.h"

#include <functional>
#include <vector>

namespace corvane
{

/// What is wanted of a graph.
struct GraphRequest {
    std::vector<GraphMeasure> measures = graphMeasuresOfTables(); ///< columns, in their order
    bool withTree = false;
    int threads = 0; ///< 0: one for each processor; they do not change the result
};

/// How much a measure of Nodalis may take, and the watch that it tells, if there is one.
nodalis::Effort graphEffort(int threads, const ProgressWatch &watch);

/// Gives the watch for a measure that begins.
using MeasureWatch = std::function<ProgressWatch(const GraphMeasure &measure)>;

/// Writes the measures of a graph into a folder, which is made when it is missing:
/// "features.csv", a row per node with its number, its name (the number again for nodes without
/// names) and a column per measure; and if wanted "mst.csv", the weights of the minimum spanning
/// tree as a matrix, with the names around it if there are any. Both appear, or neither. Returns
/// what OutputFolder::commit says. Throws InputError, nodalis::Ended and WorkStopped.
QStringList writeGraphFiles(const QString &folder, const GraphTable &graph,
                            const GraphRequest &request = {}, const MeasureWatch &watch = {},
                            const StepWatch &steps = {});

/// About how many seconds local efficiency takes on this machine: by the relaxations of paths that
/// it needs, and how many a short trial does in a second.
double secondsOfLocalEfficiency(const Eigen::MatrixXf &weights, int threads);

/// What the measures do with this matrix that its owner may not expect, one line each.
QStringList graphNotes(const Eigen::MatrixXf &weights);

} // namespace corvane
