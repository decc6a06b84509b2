// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/painting/node_group.h"

#include <Eigen/Core>
#include <QPainter>
#include <vector>

namespace corvane
{

/// The series of all nodes at once.
struct CarpetPicture {
    QString title;
    Eigen::MatrixXd values;        ///< nodes, from the top, x volumes; NaN where there is none
    double limit = 1;              ///< black is -limit, white limit
    std::vector<NodeGroup> groups; ///< networks at the left edge; empty for none
    std::vector<bool> leftOut;     ///< one for each volume
};

/// Paints a row of grey values for each node. Where a volume that was left out has no value its
/// band shows, another node without values is pale blue.
void paintCarpet(QPainter &painter, const QRectF &area, const CarpetPicture &picture);

} // namespace corvane
