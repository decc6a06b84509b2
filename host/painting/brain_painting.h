// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/painting/network_picture.h"

#include <QPainter>
#include <array>

namespace corvane
{

/// A network on the brain that it belongs to.
struct BrainPicture {
    NetworkPicture network; ///< with its edges
    /// Of each node, in mm to the right, to the front and up; unset for a node without a place.
    std::vector<std::optional<Eigen::Vector3d>> places;
    /// In mm, from above (x, y), from behind (x, z) and from the left (y, z), the second axis
    /// upward; empty where there is none.
    std::array<QPainterPath, 3> outlines;
};

/// Where the three projections stand: from above, from behind, from the left, side by side. Left
/// is left in the first two; the front is at the left in the third.
struct BrainLayout {
    std::array<QRectF, 3> panels;
    double scale = 1;               ///< units per mm, the same in all
    std::array<QPointF, 3> origins; ///< of 0 mm

    QPointF place(int panel, const Eigen::Vector3d &mm) const;
    /// The panel that holds a place; -1 without.
    int panelAt(const QPointF &place) const;
    /// The node nearest to a place in its panel, no further than `reach`; -1 without.
    int nodeAt(const QPointF &place, const BrainPicture &picture, double reach) const;
};

BrainLayout brainLayout(const QRectF &area, const BrainPicture &picture);

/// Paints three projections: the outline, the edges as lines, the nodes at their places in the
/// colours of their networks, larger the more edges they have. Says how many nodes have no place.
/// Uses the painter's font family and its background as the paper.
void paintBrain(QPainter &painter, const QRectF &area, const BrainPicture &picture);

} // namespace corvane
