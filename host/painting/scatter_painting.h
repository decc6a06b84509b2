// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <Eigen/Core>
#include <QPainter>
#include <QString>

namespace corvane
{

/// Pairs of numbers.
struct ScatterPicture {
    QString title;
    QString x, y; ///< what the axes show
    QString foot; ///< a line below; may be empty
    Eigen::ArrayXd xs, ys;
    bool hasLine = false; ///< the straight line of least squares
    /// The ends of the axis of y, for pictures that are to be compared; equal for those of ys.
    double low = 0, high = 0;
};

/// Paints a point for each pair of numbers; those that lack one are none. The more points, the
/// smaller and the more transparent they are. Uses the painter's font family.
void paintScatter(QPainter &painter, const QRectF &area, const ScatterPicture &picture);

} // namespace corvane
