// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/spanning_trees.h"

#include <nodalis/nodalis.h>

#include <utility>

SpanningTrees spanningTrees(const std::vector<Eigen::MatrixXf> &matrices)
{
    SpanningTrees result;
    for (const Eigen::MatrixXf &matrix : matrices) {
        auto [weights, tree] = nodalis::mst::minimum_spanning_tree(matrix, false, true);
        result.weights.push_back(std::move(weights));
        result.trees.push_back(std::move(tree));
    }
    return result;
}
