// SPDX-License-Identifier: GPL-3.0-or-later
#include "results/graph_measures.h"

#include <nodalis/nodalis.h>

#include <algorithm>

const std::vector<GraphMeasure> &graphMeasures()
{
    static const std::vector<GraphMeasure> measures = {
        {"Segragation", "clustering_coeff", "Clustering coefficient",
         "The clustering coefficient of a node is the probability that the neighors of this node "
         "are also connected to each other. It is considered to be a measure of the local "
         "connectivity or “cliqueness” of a graph.",
         "Clustering Coefficient", nodalis::clustering_coeff, false},
        {"Segragation", "local_efficiency", "Local efficiency",
         "The local efficiency is the global efficiency computed on the neighborhood of the node, "
         "and is related to the clustering coefficient.",
         "Local Efficiency", nodalis::local_efficiency, true},
        {"Integration", "global_efficiency", "Global efficiency",
         "The global efficiency is the average inverse shortest path length in the network, and is "
         "inversely related to the characteristic path length.",
         "Global Efficiency", nullptr, false},
        {"Centrality", "degree", "Degree",
         "Measure the importance of each node through their number/weights of connections.",
         "Degree", nodalis::degree, false},
        {"Centrality", "eigenvector_centrality", "Eigenvector centrality",
         "Eigenector centrality is a self-referential measure of centrality; nodes have higher "
         "values if they connect to other nodes that also exhibit high eigenvector centrality.",
         "Eigenvector Centrality", nodalis::eigenvector_centrality, true},
        {"Nodal Features", "strength", "Strength",
         "The sum of the weights of the connections of each node.", "Strength", nodalis::strength,
         false},
        {"Nodal Features", "nodal_ge", "Nodal Global Efficiency",
         "The average of the inverse shortest path length from a node to all the other in the "
         "graph.",
         "Nodal Global Efficiency", nodalis::nodal_global_efficiency, true},
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

FeatureValues valuesPerNode(const GraphMeasure &measure,
                            const std::vector<Eigen::MatrixXf> &matrices)
{
    FeatureValues values;
    for (const Eigen::MatrixXf &matrix : matrices) {
        const Eigen::ArrayXf nodes = measure.perNode(matrix);
        values.emplace_back(nodes.data(), nodes.data() + nodes.size());
    }
    return values;
}
