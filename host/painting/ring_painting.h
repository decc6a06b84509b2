// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/painting/labels.h"
#include "host/painting/network_picture.h"

#include <QPainter>
#include <vector>

namespace corvane
{

/// Where the nodes of a ring stand.
struct RingLayout {
    QPointF centre;
    double radius = 0;
    int nodes = 0;
    LabelFit fit; ///< of the names
    bool namesOfGroups = false;
    double namesRoom = 0; ///< outward of the ring

    /// Of a node, or between two, in rad clockwise from the top.
    double angle(double node) const;
    QPointF place(double node, double distance) const;
    /// The nearest node, when the place is at the rim or outside it; -1 otherwise.
    int nodeAt(const QPointF &place) const;
};

RingLayout ringLayout(const QPainter &painter, const QRectF &area, const NetworkPicture &picture);

/// The line of an edge.
QPainterPath ringEdgePath(const RingLayout &ring, int from, int to);

/// The `most` pairs of nodes with the largest absolute values, ascending by these, so that the
/// strongest are painted last; ties go by the nodes' numbers. Pairs without a value are none, of a
/// matrix that is not symmetric the upper half counts.
std::vector<RingEdge> strongestEdges(const Eigen::MatrixXd &values, std::size_t most);

/// How many edges a ring of that many nodes shows: all up to 40 nodes, then as many as 40 nodes
/// would have.
std::size_t edgesInRing(std::size_t nodes);

/// Paints the nodes on a circle, clockwise from the top, with their names around it and the
/// strongest edges, or those that the picture names, as arcs in the colours of their values. Which
/// edges are shown is said below. Networks are coloured arcs with one name each and stand in a
/// legend when there is no room for the names of all nodes. Uses the painter's font family and its
/// background as the paper. Any number of nodes.
void paintRing(QPainter &painter, const QRectF &area, const NetworkPicture &picture);

} // namespace corvane
