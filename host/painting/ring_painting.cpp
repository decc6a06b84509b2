// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/painting/ring_painting.h"

#include "host/painting/category_colours.h"
#include "host/painting/colour_map.h"
#include "host/painting/group_bar.h"
#include "host/painting/labels.h"

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

struct Ring {
    QPointF centre;
    double radius;
    int nodes;

    /// In rad, clockwise from the top.
    double angle(double node) const { return 2 * pi * node / nodes; }
    QPointF place(double node, double distance) const
    {
        return centre + distance * QPointF(std::sin(angle(node)), -std::cos(angle(node)));
    }
};

void paintEdges(QPainter &painter, const Ring &ring, const std::vector<RingEdge> &edges,
                double limit)
{
    painter.setBrush(Qt::NoBrush);
    for (const RingEdge &edge : edges) {
        const double strength = limit > 0 ? std::min(std::abs(edge.value) / limit, 1.0) : 0;
        // White would be lost on white: weak edges are thin and see-through instead.
        QColor colour = divergingColour(std::copysign(0.4 + 0.6 * strength, edge.value), 1);
        colour.setAlphaF(0.15 + 0.85 * strength);
        painter.setPen(QPen(colour, 0.5 + 3 * strength));
        QPainterPath path(ring.place(edge.from, ring.radius));
        // Neighbours are joined near the rim, opposite nodes through the middle.
        const double apart = std::abs(edge.from - edge.to) / double(ring.nodes);
        const double inward = 1 - 2 * std::min(apart, 1 - apart);
        const QPointF middle =
            (ring.place(edge.from, ring.radius) + ring.place(edge.to, ring.radius)) / 2;
        path.quadTo(ring.centre + inward * (middle - ring.centre),
                    ring.place(edge.to, ring.radius));
        painter.drawPath(path);
    }
}

void paintNodes(QPainter &painter, const Ring &ring)
{
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::black);
    const double size = std::clamp(pi * ring.radius / ring.nodes / 2, 1.0, 5.0);
    for (int node = 0; node < ring.nodes; ++node)
        painter.drawEllipse(ring.place(node, ring.radius), size, size);
}

/// Where there is no room for all nodes, their networks say more than a few of them.
bool namesOfGroups(const NetworkPicture &picture, const LabelFit &fit)
{
    return !picture.groups.empty() && fit.every > 1;
}

/// From the nodes to their names.
double namesDistance(const NetworkPicture &picture)
{
    return picture.groups.empty() ? gap : arcDistance + arcWidth / 2 + gap / 2;
}

/// Networks as arcs outside the nodes. An arc of no more than a node is still seen.
void paintArcs(QPainter &painter, const Ring &ring, const std::vector<NodeGroup> &groups)
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
void paintName(QPainter &painter, const Ring &ring, double node, double distance,
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
void paintNames(QPainter &painter, const Ring &ring, const NetworkPicture &picture,
                const LabelFit &fit, double room)
{
    painter.setPen(Qt::black);
    const double distance = ring.radius + namesDistance(picture);
    if (!namesOfGroups(picture, fit)) {
        for (int node = 0; node < ring.nodes; node += fit.every)
            paintName(painter, ring, node, distance, picture.names[node]);
        return;
    }
    const QFontMetricsF metrics(painter.font());
    const double apart = metrics.height() * ring.nodes / (2 * pi * distance);
    double before = -ring.nodes;
    double first = 2 * ring.nodes;
    for (const NodeGroup &group : picture.groups) {
        const double middle = group.first + (group.count - 1) / 2.0;
        if (middle - before < apart || first + ring.nodes - middle < apart)
            continue;
        paintName(painter, ring, middle, distance,
                  metrics.elidedText(group.name, Qt::ElideRight, room));
        before = middle;
        first = std::min(first, middle);
    }
}

/// The room that names take outward.
double namesWidth(const QPainter &painter, const NetworkPicture &picture, const LabelFit &fit)
{
    return namesOfGroups(picture, fit) ? widestGroup(painter.font(), picture.groups)
                                       : widestLabel(painter.font(), picture.names, fit.every);
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

void paintRing(QPainter &painter, const QRectF &area, const NetworkPicture &picture)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(area, Qt::white);
    paintTitle(painter, QRectF(area.left(), area.top(), area.width(), titleHeight), picture.title);
    const double title = picture.title.isEmpty() ? 0 : titleHeight;
    const QRectF round(area.left(), area.top() + title, area.width(),
                       area.height() - title - scaleHeight - 2 * gap);
    const int nodes = picture.names.size();
    const auto all = strongestEdges(picture.values, std::size_t(-1)).size();
    const std::vector<RingEdge> edges =
        strongestEdges(picture.values, edgesInRing(std::size_t(nodes)));
    if (nodes > 0) {
        const double half = std::min(round.width(), round.height()) / 2;
        const LabelFit fit = fitLabels(2 * pi * 0.75 * half / nodes);
        painter.setFont(labelFont(painter, namesOfGroups(picture, fit) ? 13 : fit.fontSize));
        const double outside = namesDistance(picture) + gap;
        double room = namesWidth(painter, picture, fit);
        if (namesOfGroups(picture, fit))
            room = std::min(room, half * 0.36);
        const Ring ring{round.center(), std::max(half - outside - room, half / 3), nodes};
        paintEdges(painter, ring, edges, picture.limit);
        paintNodes(painter, ring);
        paintArcs(painter, ring, picture.groups);
        paintNames(painter, ring, picture, fit, room);
    }
    const QRectF foot(area.left() + gap, area.bottom() - scaleHeight - gap, area.width() - 2 * gap,
                      scaleHeight);
    painter.setFont(labelFont(painter, 14));
    painter.setPen(Qt::black);
    painter.drawText(foot, Qt::AlignLeft | Qt::AlignTop, edgesText(edges.size(), all));
    const double width = std::min(foot.width() / 2, 300.0);
    paintScale(painter, QRectF(foot.right() - width, foot.top(), width, scaleHeight),
               picture.limit);
    painter.restore();
}

} // namespace corvane
