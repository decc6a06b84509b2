// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/painting/ring_painting.h"

#include "host/painting/colour_map.h"
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
constexpr std::size_t nodesWithAllEdges = 40;

struct Ring {
    QPointF centre;
    double radius;
    int nodes;

    /// In rad, clockwise from the top.
    double angle(int node) const { return 2 * pi * node / nodes; }
    QPointF place(int node, double distance) const
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

/// Names run outward; those on the left half are turned, so that none stands on its head.
void paintNames(QPainter &painter, const Ring &ring, const QStringList &names, int every)
{
    painter.setPen(Qt::black);
    const QFontMetricsF metrics(painter.font());
    const double middle = (metrics.ascent() - metrics.descent()) / 2;
    for (int node = 0; node < ring.nodes; node += every) {
        const bool onTheLeft = ring.angle(node) > pi;
        painter.save();
        painter.translate(ring.place(node, ring.radius + gap));
        painter.rotate(ring.angle(node) * 180 / pi + (onTheLeft ? 90 : -90));
        painter.drawText(QPointF(onTheLeft ? -metrics.horizontalAdvance(names[node]) : 0, middle),
                         names[node]);
        painter.restore();
    }
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
    const QRectF round(area.left(), area.top() + titleHeight, area.width(),
                       area.height() - titleHeight - scaleHeight - 2 * gap);
    const int nodes = picture.names.size();
    const auto all = strongestEdges(picture.values, std::size_t(-1)).size();
    const std::vector<RingEdge> edges =
        strongestEdges(picture.values, edgesInRing(std::size_t(nodes)));
    if (nodes > 0) {
        const double half = std::min(round.width(), round.height()) / 2;
        const LabelFit fit = fitLabels(2 * pi * 0.75 * half / nodes);
        painter.setFont(labelFont(painter, fit.fontSize));
        const double names = widestLabel(painter.font(), picture.names, fit.every);
        const Ring ring{round.center(), std::max(half - names - 2 * gap, half / 3), nodes};
        paintEdges(painter, ring, edges, picture.limit);
        paintNodes(painter, ring);
        paintNames(painter, ring, picture.names, fit.every);
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
