// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/compute_settings.h"
#include "host/explorer/network_result.h"
#include "host/painting/node_group.h"

/// @file
/// In which order pictures show nodes.

namespace corvane
{

enum class NodeOrdering { File, Network, Hemisphere, Similarity };

inline constexpr NamedValue<NodeOrdering> nodeOrderingNames[] = {
    {NodeOrdering::Network, "network"},
    {NodeOrdering::Hemisphere, "hemisphere"},
    {NodeOrdering::Similarity, "similarity"},
    {NodeOrdering::File, "file"}};

struct OrderedNodes {
    std::vector<int> nodes;        ///< positions in the result
    std::vector<NodeGroup> groups; ///< what stands side by side; empty where nothing is grouped
};

/// Nodes of a group side by side, groups and the nodes of each in the order of the file, and nodes
/// without a group at the end. By network the left side of each comes first; by hemisphere the left
/// comes first, and the networks of a side stay together. Where no node has a group, and for
/// `File`, the order of the file stays. For `Similarity` see similarityOrder() of the values.
OrderedNodes orderedNodes(const std::vector<ResultNode> &nodes, NodeOrdering ordering,
                          const Eigen::MatrixXd &values);

/// The leaves of a tree of nodes, so that nodes with similar rows stand side by side. The distance
/// of two nodes is 1 - the correlation of their rows, without the two entries between them and what
/// is NaN in either; clusters join by average linkage (Sokal and Michener 1958), the closest pair
/// first, ties by their numbers. Of the four ways to put two clusters side by side, the one with
/// the closest ends at the seam is taken, ties by their numbers. Nodes without values come last.
/// O(n^3) at worst, about O(n^2) in practice.
std::vector<int> similarityOrder(const Eigen::MatrixXd &values);

} // namespace corvane
