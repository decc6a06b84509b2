// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/graph_measures.h"

#include <QString>
#include <nodalis/nodalis.h>

#include <algorithm>

namespace
{

Eigen::ArrayXf globalEfficiencyColumn(const Eigen::MatrixXf &matrix, const nodalis::Effort &effort)
{
    return Eigen::ArrayXf::Constant(matrix.rows(), nodalis::global_efficiency(matrix, effort));
}

} // namespace

const std::vector<GraphMeasure> &graphMeasures()
{
    static const std::vector<GraphMeasure> measures = {
        {"Segragation", "clustering_coeff", "clustering_coeff", "Clustering coefficient",
         "The clustering coefficient of a node is the probability that the neighors of this node "
         "are also connected to each other. It is considered to be a measure of the local "
         "connectivity or “cliqueness” of a graph.",
         "Clustering Coefficient", false, nodalis::clustering_coeff},
        {"Segragation", "local_efficiency", "local_efficiency", "Local efficiency",
         "The local efficiency is the global efficiency computed on the neighborhood of the node, "
         "and is related to the clustering coefficient.",
         "Local Efficiency", true, nodalis::local_efficiency, nullptr, nodalis::local_efficiency},
        {"Integration", "global_efficiency", "global_efficiency", "Global efficiency",
         "The global efficiency is the average inverse shortest path length in the network, and is "
         "inversely related to the characteristic path length.",
         "Global Efficiency", false, nullptr, nodalis::global_efficiency, globalEfficiencyColumn},
        {"Centrality", "degree", "degree", "Degree",
         "Measure the importance of each node through their number/weights of connections.",
         "Degree", false, nodalis::degree},
        {"Centrality", "eigenvector_centrality", "eigenvector_centrality", "Eigenvector centrality",
         "Eigenector centrality is a self-referential measure of centrality; nodes have higher "
         "values if they connect to other nodes that also exhibit high eigenvector centrality.",
         "Eigenvector Centrality", true, nodalis::eigenvector_centrality},
        {"Nodal Features", "strength", "strength", "Strength",
         "The sum of the weights of the connections of each node.", "Strength", false,
         nodalis::strength},
        {"Nodal Features", "nodal_ge", "nodal_global_efficiency", "Nodal Global Efficiency",
         "The average of the inverse shortest path length from a node to all the other in the "
         "graph.",
         "Nodal Global Efficiency", true, nodalis::nodal_global_efficiency, nullptr,
         nodalis::nodal_global_efficiency},
    };
    return measures;
}

const GraphMeasure *graphMeasure(const QString &key)
{
    const std::vector<GraphMeasure> &measures = graphMeasures();
    const auto found =
        std::find_if(measures.begin(), measures.end(), [&key](const GraphMeasure &measure) {
            return key == QLatin1String(measure.key);
        });
    return found == measures.end() ? nullptr : &*found;
}

std::vector<GraphMeasure> graphMeasuresOfTables()
{
    std::vector<GraphMeasure> measures = graphMeasures();
    std::stable_partition(measures.begin(), measures.end(),
                          [](const GraphMeasure &measure) { return measure.perNode != nullptr; });
    return measures;
}

Eigen::ArrayXf columnOf(const GraphMeasure &measure, const Eigen::MatrixXf &matrix,
                        const nodalis::Effort &effort)
{
    return measure.withEffort != nullptr ? measure.withEffort(matrix, effort)
                                         : measure.perNode(matrix);
}

std::vector<std::vector<float>> valuesPerNode(const GraphMeasure &measure,
                                              const std::vector<Eigen::MatrixXf> &matrices)
{
    std::vector<std::vector<float>> values;
    for (const Eigen::MatrixXf &matrix : matrices) {
        const Eigen::ArrayXf nodes = measure.perNode(matrix);
        values.emplace_back(nodes.data(), nodes.data() + nodes.size());
    }
    return values;
}
