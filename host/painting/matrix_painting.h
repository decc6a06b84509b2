// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/painting/network_picture.h"

#include <QPainter>

namespace corvane
{

/// Paints the matrix as a map of colours with names on the left and below, a title and the scale.
/// Uses the painter's font family. Any number of nodes.
void paintMatrix(QPainter &painter, const QRectF &area, const NetworkPicture &picture);

} // namespace corvane
