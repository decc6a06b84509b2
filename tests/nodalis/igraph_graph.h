// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <utility>

#include <Eigen/Core>
#include <igraph.h>

/// A weight matrix as a graph of igraph: w > 0 is an edge. Also measures it as igraph does.
/// igraph ends the program on an error, which is what a test or a benchmark wants.
class IgraphGraph
{
public:
    explicit IgraphGraph(const Eigen::MatrixXf &matrix);
    ~IgraphGraph();
    IgraphGraph(const IgraphGraph &) = delete;
    IgraphGraph &operator=(const IgraphGraph &) = delete;

    Eigen::ArrayXd degree() const;
    Eigen::ArrayXd strength() const;
    /// Of the unweighted graph.
    Eigen::ArrayXd binary_clustering() const;
    /// Barrat's definition.
    Eigen::ArrayXd barrat_clustering() const;
    double global_efficiency() const;
    Eigen::ArrayXd harmonic_centrality() const;
    /// Paths may leave the neighbourhood.
    Eigen::ArrayXd open_local_efficiency() const;
    /// Composed of igraph's subgraphs and shortest paths, as nodalis defines it.
    Eigen::ArrayXd local_efficiency() const;
    /// Unit 2-norm.
    Eigen::ArrayXd eigenvector_centrality() const;
    /// Total weight of the heaviest forest and its number of edges.
    std::pair<double, int> spanning_forest() const;
    /// Shortest paths by its Floyd and Warshall.
    double floyd_warshall_efficiency() const;

private:
    igraph_integer_t size() const { return igraph_vcount(&m_graph); }

    igraph_t m_graph;
    igraph_vector_t m_weights;
    igraph_vector_t m_lengths;
    igraph_vector_t m_root_lengths;
    igraph_vector_t m_negative;
};
