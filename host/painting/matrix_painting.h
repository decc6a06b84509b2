// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/painting/labels.h"
#include "host/painting/network_picture.h"

#include <QPainter>

namespace corvane
{

/// Where things stand in the picture of a matrix.
struct MatrixLayout {
    QRectF map;
    NodeRange rows, columns; ///< that are shown
    LabelFit fit;            ///< of the names
    bool namesOfGroups = false;
    double namesRoom = 0; ///< at the left of the map

    /// The node of the row or column at a place; -1 outside the map.
    int rowAt(double y) const;
    int columnAt(double x) const;
    /// The place of an entry, also outside the map.
    QRectF cell(int row, int column) const;
};

MatrixLayout matrixLayout(const QPainter &painter, const QRectF &area,
                          const NetworkPicture &picture);

/// Paints the matrix as a map of colours with names on the left and below, a title and the scale.
/// Networks have lines between them and a coloured bar above; where names of nodes do not all fit,
/// the networks' names stand at the left in their place. Uses the painter's font family and its
/// background as the paper. Any number of nodes.
void paintMatrix(QPainter &painter, const QRectF &area, const NetworkPicture &picture);

} // namespace corvane
