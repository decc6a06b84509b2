// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QImage>
#include <QPointF>
#include <vector>

namespace corvane
{

/// A curve of the second degree; straight where its control point lies between its ends.
struct PixelLine {
    QPointF from, control, to; ///< in pixels, (0, 0) is the corner of the first one
    double width;              ///< it is as much longer at both ends together
    QColor colour;
};

/// Paints lines on an image of premultiplied colours, the later above the earlier: each pixel by
/// the share of it that the line covers. For thousands of thin lines this takes a third of the time
/// of a QPainter, and goes on several threads. The picture is the same on any number of them.
void paintLines(QImage &image, const std::vector<PixelLine> &lines);

} // namespace corvane
