// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <Eigen/Core>
#include <QImage>
#include <QPainter>

/// @file
/// Tables of numbers as grey values.

namespace corvane
{

/// The table brought to at most that many rows and columns, each the mean of those that it stands
/// for; NaN where all of them are.
Eigen::MatrixXd reduced(const Eigen::MatrixXd &table, Eigen::Index rows, Eigen::Index columns);

/// Black for 0 to white for 1, in so many levels: with few of them files of noisy pictures are
/// small.
QRgb greyValue(double share, int levels);

/// How many pixels of the picture the area has, at the painter's scale.
QSize pixelsOf(const QPainter &painter, const QRectF &area);

} // namespace corvane
