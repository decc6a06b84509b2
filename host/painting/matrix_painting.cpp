// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/painting/matrix_painting.h"

#include "host/painting/colour_map.h"
#include "host/painting/labels.h"

#include <QFontMetricsF>
#include <QImage>
#include <algorithm>

namespace corvane
{

namespace
{

constexpr double titleHeight = 36;
constexpr double scaleHeight = 40;
constexpr double gap = 8;

QImage cells(const NetworkPicture &picture)
{
    const int nodes = int(picture.values.rows());
    QImage image(nodes, nodes, QImage::Format_RGB32);
    for (int row = 0; row < nodes; ++row)
        for (int column = 0; column < nodes; ++column)
            image.setPixelColor(column, row,
                                divergingColour(picture.values(row, column), picture.limit));
    return image;
}

/// Names at the left edge of the map, and turned below it.
void paintNames(QPainter &painter, const QRectF &map, const QStringList &names, const LabelFit &fit)
{
    const double spacing = map.height() / names.size();
    const QFontMetricsF metrics(painter.font());
    const double middle = (metrics.ascent() - metrics.descent()) / 2;
    for (int node = 0; node < names.size(); node += fit.every) {
        const double place = (node + 0.5) * spacing;
        const double width = metrics.horizontalAdvance(names[node]);
        painter.drawText(QPointF(map.left() - gap - width, map.top() + place + middle),
                         names[node]);
        painter.save();
        painter.translate(map.left() + place + middle, map.bottom() + gap + width);
        painter.rotate(-90);
        painter.drawText(QPointF(0, 0), names[node]);
        painter.restore();
    }
}

} // namespace

void paintMatrix(QPainter &painter, const QRectF &area, const NetworkPicture &picture)
{
    painter.save();
    painter.fillRect(area, Qt::white);
    paintTitle(painter, QRectF(area.left(), area.top(), area.width(), titleHeight), picture.title);
    const double height = area.height() - titleHeight - scaleHeight - 3 * gap;
    if (!picture.names.isEmpty()) {
        // A first guess of the map's side decides on the font, whose names then take their room.
        const LabelFit fit = fitLabels(0.8 * std::min(area.width(), height) / picture.names.size());
        painter.setFont(labelFont(painter, fit.fontSize));
        painter.setPen(Qt::black);
        const double names = std::min(
            widestLabel(painter.font(), picture.names, fit.every) + 2 * gap, area.width() / 3);
        const double side = std::max(1.0, std::min(area.width() - names - gap, height - names));
        const QRectF map(area.left() + names, area.top() + titleHeight, side, side);
        painter.setRenderHint(QPainter::SmoothPixmapTransform, false);
        painter.drawImage(map, cells(picture));
        painter.drawRect(map);
        paintNames(painter, map, picture.names, fit);
    }
    const double width = std::min(area.width() - 2 * gap, 300.0);
    paintScale(
        painter,
        QRectF(area.right() - width - gap, area.bottom() - scaleHeight - gap, width, scaleHeight),
        picture.limit);
    painter.restore();
}

} // namespace corvane
