// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include <Eigen/Core>

/// \file
/// The edges of undirected networks as rows of numbers.
///
/// Edge order, everywhere: the upper triangle row by row, (0,1), (0,2), ..., (0,N-1), (1,2), ...

namespace statistics
{

using Eigen::Index;

/// Subjects x edges; a subject's edges lie side by side in memory. What holds for edges holds for
/// any other measures in columns, such as one value per node.
using EdgeData = Eigen::Matrix<double, Eigen::Dynamic, Eigen::Dynamic, Eigen::RowMajor>;

/// The two nodes of an edge, first < second.
struct NodePair {
    int first = 0;
    int second = 0;
};

/// N (N - 1) / 2.
Index edge_count(Index nodes);

/// The N of which `edges` is N (N - 1) / 2, N >= 2.
/// \throws Error if there is none.
int node_count(Index edges);

/// The nodes of each edge, in the order above.
std::vector<NodePair> node_pairs(int nodes);

/// Which nodes a subject has: 1 for those with at least one number off the diagonal, 0 for those
/// whose row is `n/a` (not a number) throughout.
/// \throws Error if the matrix is not square.
std::vector<char> nodes_present(const Eigen::MatrixXd &matrix);

/// What is left for a test on complete data, all by number from 0.
struct CompletePart {
    std::vector<Index> nodes;
    std::vector<Index> subjects;
    std::vector<Index> dropped_nodes;
    std::vector<Index> dropped_subjects;
    /// For each dropped subject the kept nodes that it lacks.
    std::vector<std::vector<Index>> lacking;
};

/// Drops first the nodes that fewer than `min_node_subjects` (a share, 0 to 1) of the subjects
/// have, then the subjects that still lack a node.
/// \param present for each subject its `nodes_present`.
/// \throws Error if the lists differ in length, the share is outside 0 to 1, or fewer than two
///         nodes or no subject are left.
CompletePart complete_part(const std::vector<std::vector<char>> &present,
                           double min_node_subjects = 0.9);

/// The edges among the given nodes of one symmetric matrix, as a row of EdgeData.
/// \throws Error if the matrix is not square, an edge is `n/a` or infinite, or its two halves
///         differ by more than 1e-6 (relative to values above 1). Nodes are named if names are
///         given.
Eigen::RowVectorXd edges_of(const Eigen::MatrixXd &matrix, const std::vector<Index> &nodes,
                            const std::vector<std::string> &node_names = {});

/// \throws Error naming the first subject and edge whose value is not finite, or if there are no
///         subjects or no edges.
void require_finite(const EdgeData &data);

} // namespace statistics
