// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/painting/matrix_painting.h"

#include "host/painting/category_colours.h"
#include "host/painting/colour_map.h"
#include "host/painting/group_bar.h"
#include "host/painting/picture_colours.h"

#include <QFontMetricsF>
#include <QImage>
#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace corvane
{

namespace
{

constexpr double titleHeight = 36;
constexpr double scaleHeight = 40;
constexpr double gap = 8;
constexpr double barWidth = 8;
constexpr double groupNamesHeight = 20;

/// Colours of values rounded to a fiftieth of the limit: the picture of many nodes has few colours
/// and a small file.
class SteppedColours
{
public:
    explicit SteppedColours(bool onDark)
    {
        for (std::size_t place = 0; place < m_colours.size(); ++place)
            m_colours[place] = divergingColour((double(place) - steps) / steps, 1, onDark).rgb();
        m_missing = divergingColour(std::nan(""), 1, onDark).rgb();
    }
    QRgb colour(double value, double limit) const
    {
        if (std::isnan(value))
            return m_missing;
        const double share = limit > 0 ? std::clamp(value / limit, -1.0, 1.0) : 0;
        return m_colours[std::size_t(std::lround(share * steps) + steps)];
    }

private:
    static constexpr int steps = 50;
    std::array<QRgb, 2 * steps + 1> m_colours;
    QRgb m_missing;
};

QImage cells(const NetworkPicture &picture, const MatrixLayout &layout, const QColor &paper)
{
    const SteppedColours colours(isDark(paper));
    QImage image(layout.columns.count, layout.rows.count, QImage::Format_RGB32);
    const bool hasEdges = picture.edges.has_value();
    for (int y = 0; y < layout.rows.count; ++y) {
        auto *line = reinterpret_cast<QRgb *>(image.scanLine(y));
        const int row = layout.rows.first + y;
        for (int x = 0; x < layout.columns.count; ++x) {
            const int column = layout.columns.first + x;
            const double value = picture.values(row, column);
            line[x] = hasEdges && column > row && !std::isnan(value)
                          ? paper.rgb()
                          : colours.colour(value, picture.limit);
        }
    }
    if (!hasEdges)
        return image;
    for (const RingEdge &edge : *picture.edges) {
        const int y = std::min(edge.from, edge.to) - layout.rows.first;
        const int x = std::max(edge.from, edge.to) - layout.columns.first;
        if (x >= 0 && y >= 0 && x < layout.columns.count && y < layout.rows.count)
            reinterpret_cast<QRgb *>(image.scanLine(y))[x] =
                colours.colour(edge.value, picture.limit);
    }
    return image;
}

/// The networks as far as they are in a range, counted from its beginning.
std::vector<NodeGroup> groupsIn(const std::vector<NodeGroup> &groups, const NodeRange &range)
{
    std::vector<NodeGroup> shown;
    for (const NodeGroup &group : groups) {
        const int first = std::max(group.first, range.first);
        const int behind = std::min(group.first + group.count, range.first + range.count);
        shown.push_back({group.name, first - range.first, std::max(0, behind - first)});
    }
    return shown;
}

/// Lines between networks.
void paintBorders(QPainter &painter, const MatrixLayout &layout, const NetworkPicture &picture)
{
    const QRectF &map = layout.map;
    painter.setPen(QColor(isDark(paperOf(painter)) ? qRgb(150, 150, 150) : qRgb(90, 90, 90)));
    for (const NodeGroup &group : picture.groups) {
        const QRectF cell = layout.cell(group.first, group.first);
        if (cell.top() >= map.top() && cell.top() <= map.bottom())
            painter.drawLine(QPointF(map.left(), cell.top()), QPointF(map.right(), cell.top()));
        if (cell.left() >= map.left() && cell.left() <= map.right())
            painter.drawLine(QPointF(cell.left(), map.top()), QPointF(cell.left(), map.bottom()));
    }
}

/// The networks as coloured blocks above the map, with their names as far as these fit.
void paintGroupsAbove(QPainter &painter, const MatrixLayout &layout, const NetworkPicture &picture)
{
    const QRectF &map = layout.map;
    const double spacing = map.width() / layout.columns.count;
    painter.setFont(labelFont(painter, 12));
    painter.setPen(inkOf(painter));
    const QFontMetricsF metrics(painter.font());
    const std::vector<NodeGroup> groups = groupsIn(picture.groups, layout.columns);
    for (std::size_t n = 0; n < groups.size(); ++n) {
        const NodeGroup &group = groups[n];
        if (group.count == 0)
            continue;
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
void paintNames(QPainter &painter, const MatrixLayout &layout, const QStringList &names)
{
    const QRectF &map = layout.map;
    const QFontMetricsF metrics(painter.font());
    const double middle = (metrics.ascent() - metrics.descent()) / 2;
    const double room = layout.namesRoom - gap;
    if (layout.fit.every > std::max(layout.rows.count, layout.columns.count))
        return;
    for (int n = 0; n < layout.rows.count; n += layout.fit.every) {
        const QString name = metrics.elidedText(names[layout.rows.first + n], Qt::ElideRight, room);
        const double place = map.top() + (n + 0.5) * map.height() / layout.rows.count;
        painter.drawText(
            QPointF(map.left() - gap - metrics.horizontalAdvance(name), place + middle), name);
    }
    for (int n = 0; n < layout.columns.count; n += layout.fit.every) {
        const QString name =
            metrics.elidedText(names[layout.columns.first + n], Qt::ElideRight, room);
        painter.save();
        painter.translate(map.left() + (n + 0.5) * map.width() / layout.columns.count + middle,
                          map.bottom() + gap + metrics.horizontalAdvance(name));
        painter.rotate(-90);
        painter.drawText(QPointF(0, 0), name);
        painter.restore();
    }
}

/// The networks at the left of the map, numbered and coloured as above it.
void paintGroupsAtLeft(QPainter &painter, const MatrixLayout &layout, const NetworkPicture &picture)
{
    const QRectF &map = layout.map;
    paintGroupBar(painter, QRectF(map.left() - barWidth - 2, map.top(), barWidth, map.height()),
                  groupsIn(picture.groups, layout.rows), layout.rows.count,
                  layout.namesRoom - barWidth - 2);
}

double heightAboveMap(const NetworkPicture &picture)
{
    const double title = picture.title.isEmpty() ? gap : titleHeight;
    return title + (picture.groups.empty() ? 0 : barWidth + groupNamesHeight);
}

/// What is left to the map and the names below it.
double heightOfMap(const QRectF &area, const NetworkPicture &picture)
{
    return area.height() - heightAboveMap(picture) - scaleHeight - 3 * gap;
}

/// With names that fit a map of that side.
MatrixLayout layoutFor(double expectedSide, const QPainter &painter, const QRectF &area,
                       const NetworkPicture &picture)
{
    MatrixLayout layout;
    const NodeRange all{0, int(picture.names.size())};
    layout.rows = picture.rows.value_or(all);
    layout.columns = picture.columns.value_or(all);
    const bool grouped = !picture.groups.empty();
    const double height = heightOfMap(area, picture);
    const double above = heightAboveMap(picture);
    layout.fit = fitLabels(expectedSide / std::max({layout.rows.count, layout.columns.count, 1}));
    // Where there is no room for all nodes, their networks say more than a few of them.
    layout.namesOfGroups = grouped && layout.fit.every > 1;
    const QFont font = labelFont(painter, layout.namesOfGroups ? 12 : layout.fit.fontSize);
    const double widest = layout.namesOfGroups ? widestGroup(font, picture.groups) + barWidth
                                               : widestLabel(font, picture.names, layout.fit.every);
    layout.namesRoom = std::min(widest + 2 * gap, area.width() / 3);
    const double below = layout.namesOfGroups ? gap : layout.namesRoom;
    const double side =
        std::max(1.0, std::min(area.width() - layout.namesRoom - gap, height - below));
    // Names that leave less than half of the room to the map are left away.
    const double most = std::min(area.width() - 2 * gap, height - gap);
    if (side < most / 2) {
        layout.fit.every = std::numeric_limits<int>::max();
        layout.namesOfGroups = false;
        layout.namesRoom = gap;
        layout.map = QRectF(area.left() + (area.width() - most) / 2, area.top() + above,
                            std::max(1.0, most), std::max(1.0, most));
        return layout;
    }
    const double spare = std::max(0.0, area.width() - layout.namesRoom - gap - side);
    layout.map = QRectF(area.left() + layout.namesRoom + spare / 2, area.top() + above, side, side);
    return layout;
}

int nodeAt(double share, const NodeRange &range)
{
    return share < 0 || share >= 1 ? -1 : range.first + int(share * range.count);
}

} // namespace

int MatrixLayout::rowAt(double y) const
{
    return nodeAt((y - map.top()) / map.height(), rows);
}

int MatrixLayout::columnAt(double x) const
{
    return nodeAt((x - map.left()) / map.width(), columns);
}

QRectF MatrixLayout::cell(int row, int column) const
{
    const double width = map.width() / columns.count;
    const double height = map.height() / rows.count;
    return {map.left() + (column - columns.first) * width, map.top() + (row - rows.first) * height,
            width, height};
}

MatrixLayout matrixLayout(const QPainter &painter, const QRectF &area,
                          const NetworkPicture &picture)
{
    // A guess of the map's side decides on the font, whose names then take their room. As long as
    // that leaves less to the map, they must be smaller or fewer.
    double side = 0.8 * std::min(area.width(), heightOfMap(area, picture));
    MatrixLayout layout = layoutFor(side, painter, area, picture);
    while (layout.map.width() < side) {
        side = layout.map.width();
        layout = layoutFor(side, painter, area, picture);
    }
    return layout;
}

void paintMatrix(QPainter &painter, const QRectF &area, const NetworkPicture &picture)
{
    painter.save();
    painter.fillRect(area, paperOf(painter));
    paintTitle(painter, QRectF(area.left(), area.top(), area.width(), titleHeight), picture.title);
    if (!picture.names.isEmpty()) {
        const MatrixLayout layout = matrixLayout(painter, area, picture);
        painter.setFont(labelFont(painter, layout.namesOfGroups ? 12 : layout.fit.fontSize));
        painter.setPen(inkOf(painter));
        painter.setRenderHint(QPainter::SmoothPixmapTransform, false);
        painter.drawImage(layout.map, cells(picture, layout, paperOf(painter)));
        if (layout.namesOfGroups)
            paintGroupsAtLeft(painter, layout, picture);
        else
            paintNames(painter, layout, picture.names);
        if (!picture.groups.empty()) {
            paintBorders(painter, layout, picture);
            paintGroupsAbove(painter, layout, picture);
        }
        painter.setPen(inkOf(painter));
        painter.setBrush(Qt::NoBrush);
        painter.drawRect(layout.map);
    }
    const double width = std::min(area.width() - 2 * gap, 300.0);
    const QRectF scale(area.right() - width - gap, area.bottom() - scaleHeight - gap, width,
                       scaleHeight);
    paintScale(painter, scale, picture.limit);
    paintFoot(
        painter,
        QRectF(area.left() + gap, scale.top(), scale.left() - area.left() - 2 * gap, scaleHeight),
        picture.foot);
    painter.restore();
}

} // namespace corvane
