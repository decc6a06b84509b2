// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/painting/ring_painting.h"

#include "host/painting/category_colours.h"
#include "host/painting/colour_map.h"
#include "host/painting/group_bar.h"
#include "host/painting/picture_colours.h"

#include <QFontMetricsF>
#include <QPainterPath>
#include <algorithm>
#include <cmath>

namespace corvane
{

namespace
{

constexpr double pi = 3.141592653589793;
constexpr double titleHeight = 36;
constexpr double scaleHeight = 40;
constexpr double gap = 8;
constexpr double arcDistance = 11;
constexpr double arcWidth = 8;
constexpr std::size_t nodesWithAllEdges = 40;

constexpr double legendLine = 18;
constexpr int mostLegendLines = 3;

/// The legend of networks, in lines from left to right.
class Legend
{
public:
    Legend(const QFont &font, const std::vector<NodeGroup> &groups, double width) : m_font(font)
    {
        const QFontMetricsF metrics(font);
        double x = 0;
        int line = 0;
        for (std::size_t n = 0; n < groups.size(); ++n) {
            const QString name = metrics.elidedText(groups[n].name, Qt::ElideRight, 160);
            const double needed = 16 + metrics.horizontalAdvance(name) + 14;
            if (x > 0 && x + needed > width) {
                x = 0;
                ++line;
            }
            if (line == mostLegendLines)
                return;
            m_entries.push_back({name, QPointF(x, line * legendLine), int(n)});
            x += needed;
        }
    }
    double height() const
    {
        return m_entries.empty() ? 0 : m_entries.back().place.y() + legendLine + gap;
    }
    void paint(QPainter &painter, const QPointF &topLeft) const
    {
        painter.setFont(m_font);
        for (const Entry &entry : m_entries) {
            const QPointF place = topLeft + entry.place;
            painter.fillRect(QRectF(place + QPointF(0, 3), QSizeF(11, 11)),
                             categoryColour(entry.number));
            painter.setPen(inkOf(painter));
            painter.drawText(QRectF(place + QPointF(16, 0), QSizeF(400, legendLine)),
                             Qt::AlignLeft | Qt::AlignVCenter, entry.name);
        }
    }

private:
    struct Entry {
        QString name;
        QPointF place;
        int number;
    };
    QFont m_font;
    std::vector<Entry> m_entries;
};

EdgeStroke strokeOf(const RingLayout &ring, const RingEdge &edge)
{
    const QPointF start = ring.place(edge.from, ring.radius);
    const QPointF end = ring.place(edge.to, ring.radius);
    // Neighbours are joined near the rim, opposite nodes through the middle.
    const double apart = std::abs(edge.from - edge.to) / double(ring.nodes);
    const double inward = 1 - 2 * std::min(apart, 1 - apart);
    return {start, ring.centre + inward * ((start + end) / 2 - ring.centre), end, edge.value};
}

void paintEdges(QPainter &painter, const RingLayout &ring, const std::vector<RingEdge> &edges,
                double limit)
{
    const double reach = ring.radius + 4;
    std::vector<EdgeStroke> strokes;
    for (const RingEdge &edge : edges)
        strokes.push_back(strokeOf(ring, edge));
    paintStrokes(painter, QRectF(ring.centre - QPointF(reach, reach), QSizeF(2 * reach, 2 * reach)),
                 strokes, limit);
}

void paintNodes(QPainter &painter, const RingLayout &ring)
{
    painter.setPen(Qt::NoPen);
    painter.setBrush(inkOf(painter));
    const double size = std::clamp(pi * ring.radius / ring.nodes / 2, 1.0, 5.0);
    for (int node = 0; node < ring.nodes; ++node)
        painter.drawEllipse(ring.place(node, ring.radius), size, size);
}

/// From the nodes to their names.
double namesDistance(const NetworkPicture &picture)
{
    return picture.groups.empty() ? gap : arcDistance + arcWidth / 2 + gap / 2;
}

/// Networks as arcs outside the nodes. An arc of no more than a node is still seen.
void paintArcs(QPainter &painter, const RingLayout &ring, const std::vector<NodeGroup> &groups)
{
    painter.setBrush(Qt::NoBrush);
    const double radius = ring.radius + arcDistance;
    const QRectF circle(ring.centre.x() - radius, ring.centre.y() - radius, 2 * radius, 2 * radius);
    for (std::size_t n = 0; n < groups.size(); ++n) {
        painter.setPen(QPen(categoryColour(int(n)), arcWidth, Qt::SolidLine, Qt::FlatCap));
        // Qt counts sixteenths of a degree, anticlockwise from three o'clock.
        const double degrees = 360.0 / ring.nodes;
        const double start = 90 - (groups[n].first - 0.45) * degrees;
        painter.drawArc(circle, int(start * 16), int(-(groups[n].count - 0.1) * degrees * 16));
    }
}

/// Names run outward; those on the left half are turned, so that none stands on its head.
void paintName(QPainter &painter, const RingLayout &ring, double node, double distance,
               const QString &name)
{
    const QFontMetricsF metrics(painter.font());
    const double middle = (metrics.ascent() - metrics.descent()) / 2;
    const bool onTheLeft = ring.angle(node) > pi;
    painter.save();
    painter.translate(ring.place(node, distance));
    painter.rotate(ring.angle(node) * 180 / pi + (onTheLeft ? 90 : -90));
    painter.drawText(QPointF(onTheLeft ? -metrics.horizontalAdvance(name) : 0, middle), name);
    painter.restore();
}

/// Of all nodes that have one; or of the networks, in the middle of their arcs, but for those that
/// would overlap the one before or the first, cut to the room.
void paintNames(QPainter &painter, const RingLayout &ring, const NetworkPicture &picture)
{
    painter.setPen(inkOf(painter));
    const QFontMetricsF metrics(painter.font());
    const double distance = ring.radius + namesDistance(picture);
    if (!ring.namesOfGroups) {
        for (int node = 0; node < ring.nodes; node += ring.fit.every)
            paintName(painter, ring, node, distance,
                      metrics.elidedText(picture.names[node], Qt::ElideRight, ring.namesRoom));
        return;
    }
    const double apart = metrics.height() * ring.nodes / (2 * pi * distance);
    double before = -ring.nodes;
    double first = 2 * ring.nodes;
    for (const NodeGroup &group : picture.groups) {
        const double middle = group.first + (group.count - 1) / 2.0;
        if (middle - before < apart || first + ring.nodes - middle < apart)
            continue;
        paintName(painter, ring, middle, distance,
                  metrics.elidedText(group.name, Qt::ElideRight, ring.namesRoom));
        before = middle;
        first = std::min(first, middle);
    }
}

Legend legendOf(const QPainter &painter, const QRectF &area, const NetworkPicture &picture)
{
    return Legend(labelFont(painter, 12), picture.groups, area.width() - 2 * gap);
}

QString edgesText(std::size_t shown, std::size_t all)
{
    return shown == all ? QStringLiteral("all %1 pairs").arg(all)
                        : QStringLiteral("the %1 strongest of %2 pairs").arg(shown).arg(all);
}

} // namespace

std::vector<RingEdge> strongestEdges(const Eigen::MatrixXd &values, std::size_t most)
{
    std::vector<RingEdge> edges;
    for (int from = 0; from < values.rows(); ++from)
        for (int to = from + 1; to < values.cols(); ++to)
            if (!std::isnan(values(from, to)))
                edges.push_back({from, to, values(from, to)});
    std::stable_sort(edges.begin(), edges.end(), [](const RingEdge &a, const RingEdge &b) {
        return std::abs(a.value) > std::abs(b.value);
    });
    edges.resize(std::min(edges.size(), most));
    std::reverse(edges.begin(), edges.end());
    return edges;
}

std::size_t edgesInRing(std::size_t nodes)
{
    const std::size_t most = std::min(nodes, nodesWithAllEdges);
    return most * (most - std::min<std::size_t>(most, 1)) / 2;
}

double RingLayout::angle(double node) const
{
    return 2 * pi * node / nodes;
}

QPointF RingLayout::place(double node, double distance) const
{
    return centre + distance * QPointF(std::sin(angle(node)), -std::cos(angle(node)));
}

int RingLayout::nodeAt(const QPointF &place) const
{
    const QPointF from = place - centre;
    const double distance = std::hypot(from.x(), from.y());
    if (nodes == 0 || distance < radius - 12 || distance > radius + namesRoom + 3 * gap)
        return -1;
    const double turn = std::atan2(from.x(), -from.y()) / (2 * pi);
    return int(std::lround((turn < 0 ? turn + 1 : turn) * nodes)) % nodes;
}

QPainterPath ringEdgePath(const RingLayout &ring, int from, int to)
{
    return strokePath(strokeOf(ring, {from, to, 0}));
}

RingLayout ringLayout(const QPainter &painter, const QRectF &area, const NetworkPicture &picture)
{
    RingLayout ring;
    ring.nodes = int(picture.names.size());
    const double title = picture.title.isEmpty() ? 0 : titleHeight;
    const double whole = area.height() - title - scaleHeight - 2 * gap;
    const auto fitTo = [&](double half) { return fitLabels(2 * pi * 0.75 * half / ring.nodes); };
    ring.fit = fitTo(std::min(area.width(), whole) / 2);
    // Where there is no room for all nodes, their networks say more than a few of them.
    ring.namesOfGroups = !picture.groups.empty() && ring.fit.every > 1;
    const double legend = picture.groups.empty() ? 0 : legendOf(painter, area, picture).height();
    const QRectF round(area.left(), area.top() + title, area.width(), whole - legend);
    const double half = std::min(round.width(), round.height()) / 2;
    const QFont font = labelFont(painter, ring.namesOfGroups ? 13 : ring.fit.fontSize);
    ring.namesRoom = std::min(ring.namesOfGroups ? widestGroup(font, picture.groups)
                                                 : widestLabel(font, picture.names, ring.fit.every),
                              half * 0.34);
    ring.centre = round.center();
    ring.radius = std::max(half - namesDistance(picture) - gap - ring.namesRoom, half / 3);
    return ring;
}

void paintRing(QPainter &painter, const QRectF &area, const NetworkPicture &picture)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(area, paperOf(painter));
    paintTitle(painter, QRectF(area.left(), area.top(), area.width(), titleHeight), picture.title);
    QString foot = picture.foot;
    std::vector<RingEdge> chosen;
    if (!picture.edges) {
        const auto all = strongestEdges(picture.values, std::size_t(-1)).size();
        chosen = strongestEdges(picture.values, edgesInRing(std::size_t(picture.names.size())));
        foot = foot.isEmpty() ? edgesText(chosen.size(), all) : foot;
    }
    if (!picture.names.isEmpty()) {
        const RingLayout ring = ringLayout(painter, area, picture);
        painter.setFont(labelFont(painter, ring.namesOfGroups ? 13 : ring.fit.fontSize));
        paintEdges(painter, ring, picture.edges ? *picture.edges : chosen, picture.limit);
        paintNodes(painter, ring);
        paintArcs(painter, ring, picture.groups);
        paintNames(painter, ring, picture);
    }
    const QRectF below(area.left() + gap, area.bottom() - scaleHeight - gap, area.width() - 2 * gap,
                       scaleHeight);
    if (!picture.groups.empty()) {
        const Legend legend = legendOf(painter, area, picture);
        legend.paint(painter, below.topLeft() - QPointF(0, legend.height()));
    }
    const double width = std::min(below.width() / 2, 300.0);
    paintFoot(painter,
              QRectF(below.topLeft(), QSizeF(below.width() - width - 2 * gap, scaleHeight)), foot);
    paintScale(painter, QRectF(below.right() - width, below.top(), width, scaleHeight),
               picture.limit);
    painter.restore();
}

} // namespace corvane
