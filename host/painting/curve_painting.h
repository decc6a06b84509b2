// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <Eigen/Core>
#include <QPainter>
#include <vector>

namespace corvane
{

/// One number for each volume of a run.
struct CurvePicture {
    QString title;
    Eigen::ArrayXd values;     ///< NaN where there is none
    double threshold = 0;      ///< above it volumes are left out; 0 for none
    std::vector<bool> leftOut; ///< one for each volume
};

/// Paints the curve from 0 upward, with a break where there is no value, over bands where volumes
/// were left out, and the threshold as a dashed line. A scale that a few spikes would stretch ends
/// at four times the 90th percentile, or at twice the threshold where that is more; arrows show
/// what is higher.
void paintCurve(QPainter &painter, const QRectF &area, const CurvePicture &picture);

/// Where the scale of that curve ends.
double curveTop(const CurvePicture &picture);

} // namespace corvane
