// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QPainter>
#include <QPainterPath>
#include <vector>

namespace corvane
{

struct RingEdge {
    int from;
    int to;
    double value;
};

/// The line of an edge: a curve of the second degree; straight where its control point lies between
/// its ends.
struct EdgeStroke {
    QPointF from, control, to;
    double value;
};

QPainterPath strokePath(const EdgeStroke &stroke);

/// How an edge is drawn: in the colour of its value, the weak ones thin and see-through, so that
/// they are not lost on the paper nor hide the strong ones.
QPen edgePen(double value, double limit, bool onDark);

/// Paints the lines of edges, the later above the earlier, all in an area: on an image or pixmap by
/// paintLines(), else as paths.
void paintStrokes(QPainter &painter, const QRectF &area, const std::vector<EdgeStroke> &strokes,
                  double limit);

} // namespace corvane
