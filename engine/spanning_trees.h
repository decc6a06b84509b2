// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <Eigen/Core>

#include <vector>

/// The spanning trees of a list of connectivity matrices, in the order of the list.
struct SpanningTrees {
    std::vector<Eigen::MatrixXf> matrices; ///< the weights that the tree keeps, both triangles
    std::vector<Eigen::MatrixXi> trees;    ///< 1 where a weight is kept, both triangles
};

/// The tree of the strongest connections of each matrix; see `nodalis::mst`.
SpanningTrees minimumSpanningTrees(const std::vector<Eigen::MatrixXf> &matrices);
