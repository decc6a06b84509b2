// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/painting/network_picture.h"

#include <QPainter>
#include <vector>

namespace corvane
{

struct RingEdge {
    int from;
    int to;
    double value;
};

/// The `most` pairs of nodes with the largest absolute values, ascending by these, so that the
/// strongest are painted last; ties go by the nodes' numbers. Pairs without a value are none, of a
/// matrix that is not symmetric the upper half counts.
std::vector<RingEdge> strongestEdges(const Eigen::MatrixXd &values, std::size_t most);

/// How many edges a ring of that many nodes shows: all up to 40 nodes, then as many as 40 nodes
/// would have.
std::size_t edgesInRing(std::size_t nodes);

/// Paints the nodes on a circle, clockwise from the top, with their names around it and the
/// strongest edges as arcs in the colours of their values. Which edges are shown is said below.
/// Uses the painter's font family. Any number of nodes.
void paintRing(QPainter &painter, const QRectF &area, const NetworkPicture &picture);

} // namespace corvane
