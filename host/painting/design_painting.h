// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <Eigen/Core>
#include <QPainter>
#include <QStringList>

namespace corvane
{

/// The columns that were taken off each series.
struct DesignPicture {
    QStringList names;
    Eigen::MatrixXd columns; ///< kept volumes, from the top, x names
};

/// Paints the matrix as grey values, each column from minus its largest absolute value, black, to
/// that value, white; the intercept is white. Names stand below as far as they fit.
void paintDesign(QPainter &painter, const QRectF &area, const DesignPicture &picture);

} // namespace corvane
