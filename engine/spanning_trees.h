// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <Eigen/Core>

#include <vector>

/// The minimum spanning tree of each matrix of a list, in its order.
struct SpanningTrees {
    std::vector<Eigen::MatrixXf> weights; ///< the connections kept, with their weights; else 0
    std::vector<Eigen::MatrixXi> trees;   ///< 1 where a connection is kept; else 0
};

/// The tree of the strongest connections of each matrix; see `nodalis::mst`. Both results fill both
/// triangles. An exception of the library passes through.
SpanningTrees spanningTrees(const std::vector<Eigen::MatrixXf> &matrices);
