// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/painting/matrix_painting.h"

#include "host/painting/category_colours.h"
#include "host/painting/colour_map.h"
#include "host/painting/group_bar.h"
#include "host/painting/labels.h"

#include <QFontMetricsF>
#include <QImage>
#include <algorithm>
#include <cmath>

namespace corvane
{

namespace
{

constexpr double titleHeight = 36;
constexpr double scaleHeight = 40;
constexpr double gap = 8;
constexpr double barWidth = 8;
constexpr double groupNamesHeight = 20;

/// The colour of a value rounded to a fiftieth of the limit: the picture of many nodes has few
/// colours and a small file.
QColor steppedColour(double value, double limit)
{
    constexpr double steps = 50;
    return divergingColour(limit > 0 ? std::round(value / limit * steps) / steps : value, 1);
}

QImage cells(const NetworkPicture &picture)
{
    const int nodes = int(picture.values.rows());
    QImage image(nodes, nodes, QImage::Format_RGB32);
    for (int row = 0; row < nodes; ++row)
        for (int column = 0; column < nodes; ++column)
            image.setPixelColor(column, row,
                                steppedColour(picture.values(row, column), picture.limit));
    return image;
}

/// Lines between networks.
void paintBorders(QPainter &painter, const QRectF &map, const NetworkPicture &picture)
{
    const double spacing = map.height() / picture.names.size();
    painter.setPen(QColor(90, 90, 90));
    for (const NodeGroup &group : picture.groups) {
        const double place = group.first * spacing;
        painter.drawLine(QPointF(map.left(), map.top() + place),
                         QPointF(map.right(), map.top() + place));
        painter.drawLine(QPointF(map.left() + place, map.top()),
                         QPointF(map.left() + place, map.bottom()));
    }
}

/// The networks as coloured blocks above the map, with their names as far as these fit.
void paintGroupsAbove(QPainter &painter, const QRectF &map, const NetworkPicture &picture)
{
    const double spacing = map.width() / picture.names.size();
    painter.setFont(labelFont(painter, 12));
    painter.setPen(Qt::black);
    const QFontMetricsF metrics(painter.font());
    for (std::size_t n = 0; n < picture.groups.size(); ++n) {
        const NodeGroup &group = picture.groups[n];
        const QRectF block(map.left() + group.first * spacing, map.top() - barWidth - 2,
                           group.count * spacing, barWidth);
        painter.fillRect(block, categoryColour(int(n)));
        const QString name = metrics.elidedText(group.name, Qt::ElideRight, block.width() - 4);
        if (name.size() > 2)
            painter.drawText(QRectF(block.left(), block.top() - groupNamesHeight, block.width(),
                                    groupNamesHeight),
                             Qt::AlignCenter, name);
    }
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
    const bool grouped = !picture.groups.empty();
    const double title = picture.title.isEmpty() ? gap : titleHeight;
    const double above = title + (grouped ? barWidth + groupNamesHeight : 0);
    const double height = area.height() - above - scaleHeight - 3 * gap;
    if (!picture.names.isEmpty()) {
        // A first guess of the map's side decides on the font, whose names then take their room.
        const LabelFit fit = fitLabels(0.8 * std::min(area.width(), height) / picture.names.size());
        // Where there is no room for all nodes, their networks say more than a few of them.
        const bool namesOfGroups = grouped && fit.every > 1;
        painter.setFont(labelFont(painter, namesOfGroups ? 12 : fit.fontSize));
        painter.setPen(Qt::black);
        const double widest = namesOfGroups ? widestGroup(painter.font(), picture.groups) + barWidth
                                            : widestLabel(painter.font(), picture.names, fit.every);
        const double names = std::min(widest + 2 * gap, area.width() / 3);
        const double below = namesOfGroups ? gap : names;
        const double side = std::max(1.0, std::min(area.width() - names - gap, height - below));
        const QRectF map(area.left() + names, area.top() + above, side, side);
        painter.setRenderHint(QPainter::SmoothPixmapTransform, false);
        painter.drawImage(map, cells(picture));
        if (namesOfGroups)
            paintGroupBar(painter, QRectF(map.left() - barWidth - 2, map.top(), barWidth, side),
                          picture.groups, picture.names.size(), names - barWidth - 2);
        else
            paintNames(painter, map, picture.names, fit);
        if (grouped) {
            paintBorders(painter, map, picture);
            paintGroupsAbove(painter, map, picture);
        }
        painter.setPen(Qt::black);
        painter.setBrush(Qt::NoBrush);
        painter.drawRect(map);
    }
    const double width = std::min(area.width() - 2 * gap, 300.0);
    paintScale(
        painter,
        QRectF(area.right() - width - gap, area.bottom() - scaleHeight - gap, width, scaleHeight),
        picture.limit);
    painter.restore();
}

} // namespace corvane
