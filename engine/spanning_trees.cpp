// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/spanning_trees.h"

#include <nodalis/mst.h>

SpanningTrees minimumSpanningTrees(const std::vector<Eigen::MatrixXf> &matrices)
{
    SpanningTrees result;
    for (const Eigen::MatrixXf &matrix : matrices) {
        const auto [weights, tree] = nodalis::mst::minimum_spanning_tree(matrix, false, true);
        result.matrices.push_back(weights);
        result.trees.push_back(tree);
    }
    return result;
}
