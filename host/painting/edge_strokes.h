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

/// How an edge is drawn: in the colour of its value, the weak ones thin and see-through, so that
/// they are not lost on the paper nor hide the strong ones.
QPen edgePen(double value, double limit, bool onDark);

} // namespace corvane
