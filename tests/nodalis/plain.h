// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include <Eigen/Core>

/// The measures written down from their formulas in double precision, without regard to speed:
/// what the library is compared with. Input is conditioned (symmetric, zero diagonal).
namespace plain
{

/// An edge i < j.
struct Edge {
    int i;
    int j;
    float weight;

    bool operator==(const Edge &other) const
    {
        return i == other.i && j == other.j && weight == other.weight;
    }
};

Eigen::ArrayXd strength(const Eigen::MatrixXf &graph);
Eigen::ArrayXd clustering_coeff(const Eigen::MatrixXf &graph);
/// Shortest path lengths for given edge lengths, infinite for no edge, by Floyd and Warshall.
Eigen::MatrixXd shortest_paths(Eigen::MatrixXd lengths);
Eigen::ArrayXd nodal_global_efficiency(const Eigen::MatrixXf &graph);
Eigen::ArrayXd local_efficiency(const Eigen::MatrixXf &graph);
/// By a full eigendecomposition.
Eigen::ArrayXd eigenvector_centrality(const Eigen::MatrixXf &graph);
/// The distance of the largest two different eigenvalues, relative to the largest; 1 for one.
double relative_gap(const Eigen::MatrixXf &graph);
/// By Kruskal's method, in ascending order of i, then j.
std::vector<Edge> minimum_spanning_tree(const Eigen::MatrixXf &graph, bool weights_are_lengths);
int components(const Eigen::MatrixXf &graph);

} // namespace plain
