// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/painting/edge_strokes.h"
#include "host/painting/node_group.h"

#include <Eigen/Core>
#include <QStringList>
#include <optional>
#include <vector>

namespace corvane
{

/// Nodes that follow each other in a picture.
struct NodeRange {
    int first = 0;
    int count = 0;
};

/// What a picture of a network shows.
struct NetworkPicture {
    QString title;
    QStringList names;                  ///< of the nodes
    Eigen::MatrixXd values;             ///< nodes x nodes; NaN where there is none
    double limit = 1;                   ///< of the scale of colours, above 0
    std::vector<NodeGroup> groups = {}; ///< networks; empty for none
    /// The edges to draw, the strongest last. A ring without them chooses by itself; a matrix with
    /// them has these alone above its diagonal, and all values below it.
    std::optional<std::vector<RingEdge>> edges = {};
    QString foot = {};                     ///< what is drawn; empty for the ring's own words
    std::optional<NodeRange> rows = {};    ///< that a matrix shows; all without
    std::optional<NodeRange> columns = {}; ///< likewise
};

} // namespace corvane
