// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <Eigen/Core>

#include <vector>

namespace corvane
{

/// One measure of the graph whose weights are a matrix: a value per node.
struct NodeMeasure {
    const char *name; ///< of its column in tables
    Eigen::ArrayXf (*compute)(const Eigen::MatrixXf &weights);
    bool isOfMatrix = false; ///< one value per matrix, the same for every node
};

/// Every measure of a node, in the order of its columns. The global efficiency, one value per
/// matrix, stands last and has the same value for every node.
const std::vector<NodeMeasure> &nodeMeasures();

} // namespace corvane
