// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/extract/node_map.h"
#include "host/painting/node_group.h"

#include <vector>

namespace corvane
{

/// In which order pictures show the nodes of an atlas.
struct NodeOrder {
    std::vector<int> nodes;        ///< positions in the atlas
    std::vector<NodeGroup> groups; ///< the networks, in that order; empty where there are none
};

/// The nodes of a network side by side, networks and the nodes of each in the order of their
/// labels, and those without a network at the end. An atlas without networks keeps its order.
NodeOrder orderByNetwork(const std::vector<Node> &nodes);

} // namespace corvane
