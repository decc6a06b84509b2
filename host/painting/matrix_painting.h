// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/painting/network_picture.h"

#include <QPainter>

namespace corvane
{

/// Paints the matrix as a map of colours with names on the left and below, a title and the scale.
/// Networks have lines between them and a coloured bar above; where names of nodes do not all fit,
/// the networks' names stand at the left in their place. Uses the painter's font family. Any number
/// of nodes.
void paintMatrix(QPainter &painter, const QRectF &area, const NetworkPicture &picture);

} // namespace corvane
