// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/painting/outline_path.h"

#include <QPolygonF>

namespace corvane
{

namespace
{

/// The four ways along the corners of cells: right, down, left, up. The shape is at the right hand.
constexpr int stepX[] = {1, 0, -1, 0};
constexpr int stepY[] = {0, 1, 0, -1};

/// Whether a border runs from that corner in that direction: a cell of the shape at its right hand
/// and none at its left.
bool isBorder(const ShapeMask &shape, int x, int y, int way)
{
    switch (way) {
    case 0:
        return shape.at(x, y) && !shape.at(x, y - 1);
    case 1:
        return shape.at(x - 1, y) && !shape.at(x, y);
    case 2:
        return shape.at(x - 1, y - 1) && !shape.at(x - 1, y);
    default:
        return shape.at(x, y - 1) && !shape.at(x - 1, y - 1);
    }
}

QPolygonF rounded(const QPolygonF &corners)
{
    const int count = corners.size();
    QPolygonF line;
    for (int n = 0; n < count; ++n) {
        QPointF sum(0, 0);
        for (int k = -2; k <= 2; ++k)
            sum += corners[(n + k + count) % count];
        line << sum / 5;
    }
    return line;
}

} // namespace

QPainterPath outlineOf(const ShapeMask &shape, int least)
{
    QPainterPath path;
    // Each line begins at a border to the right that none has run along.
    std::vector<bool> isSeen(std::size_t(shape.width + 1) * std::size_t(shape.height + 1), false);
    const auto place = [&](int x, int y) {
        return std::size_t(y) * std::size_t(shape.width + 1) + std::size_t(x);
    };
    for (int startY = 0; startY <= shape.height; ++startY)
        for (int startX = 0; startX <= shape.width; ++startX) {
            if (!isBorder(shape, startX, startY, 0) || isSeen[place(startX, startY)])
                continue;
            QPolygonF corners;
            int x = startX, y = startY, way = 0;
            do {
                if (way == 0)
                    isSeen[place(x, y)] = true;
                corners << QPointF(x, y);
                x += stepX[way];
                y += stepY[way];
                // Right turns first: cells that touch at a corner are two shapes.
                for (const int turn : {1, 0, 3})
                    if (isBorder(shape, x, y, (way + turn) % 4)) {
                        way = (way + turn) % 4;
                        break;
                    }
            } while (x != startX || y != startY || way != 0);
            if (corners.size() < least)
                continue;
            path.addPolygon(rounded(corners));
            path.closeSubpath();
        }
    return path;
}

} // namespace corvane
