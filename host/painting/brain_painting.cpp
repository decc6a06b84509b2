// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/painting/brain_painting.h"

#include "host/painting/category_colours.h"
#include "host/painting/labels.h"
#include "host/painting/picture_colours.h"

#include <algorithm>
#include <cmath>

namespace corvane
{

namespace
{

constexpr double titleHeight = 36;
constexpr double scaleHeight = 40;
constexpr double gap = 8;
constexpr double captionHeight = 20;

/// The two axes of a projection, to the right and up; the third one comes towards the viewer.
struct Projection {
    int right;
    double sign; ///< of what lies to the right
    int up;
    const char *caption;
    const char *atLeft;
    const char *atRight;
};

constexpr std::array<Projection, 3> projections{{{0, 1, 1, "from above", "L", "R"},
                                                 {0, 1, 2, "from behind", "L", "R"},
                                                 {1, -1, 2, "from the left", "front", "back"}}};

QPointF projected(int panel, const Eigen::Vector3d &mm)
{
    const Projection &view = projections[std::size_t(panel)];
    return {view.sign * mm[view.right], -mm[view.up]};
}

/// What a panel holds, in mm as they are projected.
QRectF extentOf(int panel, const BrainPicture &picture)
{
    QRectF extent;
    const auto take = [&](const QPointF &point) {
        const QRectF around(point - QPointF(4, 4), QSizeF(8, 8));
        extent = extent.isNull() ? around : extent.united(around);
    };
    for (const auto &place : picture.places)
        if (place)
            take(projected(panel, *place));
    const QRectF outline = picture.outlines[std::size_t(panel)].boundingRect();
    if (!outline.isEmpty()) {
        const double sign = projections[std::size_t(panel)].sign;
        take({sign * outline.left(), -outline.top()});
        take({sign * outline.right(), -outline.bottom()});
    }
    return extent.isNull() ? QRectF(-80, -80, 160, 160) : extent;
}

std::vector<int> edgesOfNodes(const BrainPicture &picture)
{
    std::vector<int> counts(picture.places.size(), 0);
    if (picture.network.edges)
        for (const RingEdge &edge : *picture.network.edges) {
            ++counts[std::size_t(edge.from)];
            ++counts[std::size_t(edge.to)];
        }
    return counts;
}

std::vector<int> networksOf(const NetworkPicture &picture)
{
    std::vector<int> networks(std::size_t(picture.names.size()), -1);
    for (std::size_t n = 0; n < picture.groups.size(); ++n)
        std::fill_n(networks.begin() + picture.groups[n].first, picture.groups[n].count, int(n));
    return networks;
}

void paintPanel(QPainter &painter, const BrainLayout &layout, int panel,
                const BrainPicture &picture)
{
    const bool onDark = isDark(paperOf(painter));
    const Projection &view = projections[std::size_t(panel)];
    const QRectF &area = layout.panels[std::size_t(panel)];
    const QPointF origin = layout.origins[std::size_t(panel)];
    QTransform toPanel;
    toPanel.translate(origin.x(), origin.y());
    toPanel.scale(view.sign * layout.scale, -layout.scale);
    painter.setPen(QPen(onDark ? QColor(120, 122, 126) : QColor(150, 150, 150), 1.2));
    painter.setBrush(onDark ? QColor(38, 40, 44) : QColor(247, 247, 247));
    painter.drawPath(toPanel.map(picture.outlines[std::size_t(panel)]));

    if (picture.network.edges) {
        std::vector<EdgeStroke> strokes;
        for (const RingEdge &edge : *picture.network.edges) {
            const auto &from = picture.places[std::size_t(edge.from)];
            const auto &to = picture.places[std::size_t(edge.to)];
            if (!from || !to)
                continue;
            const QPointF start = layout.place(panel, *from);
            const QPointF end = layout.place(panel, *to);
            strokes.push_back({start, (start + end) / 2, end, edge.value});
        }
        paintStrokes(painter, area, strokes, picture.network.limit);
    }
    const std::vector<int> counts = edgesOfNodes(picture);
    const std::vector<int> networks = networksOf(picture.network);
    const int most = counts.empty() ? 0 : *std::max_element(counts.begin(), counts.end());
    const double base =
        std::clamp(area.width() / 8 / std::sqrt(double(picture.places.size()) + 1), 1.5, 5.0);
    painter.setPen(QPen(paperOf(painter), 0.5));
    for (std::size_t node = 0; node < picture.places.size(); ++node) {
        if (!picture.places[node])
            continue;
        const double share = most > 0 ? std::sqrt(double(counts[node]) / most) : 0;
        const double radius = base * (0.6 + 0.8 * share);
        painter.setBrush(networks[node] >= 0 ? categoryColour(networks[node]) : inkOf(painter));
        painter.drawEllipse(layout.place(panel, *picture.places[node]), radius, radius);
    }
    painter.setPen(inkOf(painter));
    painter.setFont(labelFont(painter, 12));
    const QRectF caption(area.left(), area.bottom() - captionHeight, area.width(), captionHeight);
    painter.drawText(caption, Qt::AlignCenter, QLatin1String(view.caption));
    if (area.width() < 140)
        return;
    painter.drawText(caption.adjusted(gap, 0, -gap, 0), Qt::AlignLeft | Qt::AlignVCenter,
                     QLatin1String(view.atLeft));
    painter.drawText(caption.adjusted(gap, 0, -gap, 0), Qt::AlignRight | Qt::AlignVCenter,
                     QLatin1String(view.atRight));
}

QString footOf(const BrainPicture &picture)
{
    const auto without = std::count_if(picture.places.begin(), picture.places.end(),
                                       [](const auto &place) { return !place; });
    if (without == 0)
        return picture.network.foot;
    const QString more = QStringLiteral("%1 of %2 nodes have no place and are not drawn")
                             .arg(without)
                             .arg(picture.places.size());
    return picture.network.foot.isEmpty() ? more
                                          : picture.network.foot + QStringLiteral("; ") + more;
}

} // namespace

QPointF BrainLayout::place(int panel, const Eigen::Vector3d &mm) const
{
    return origins[std::size_t(panel)] + scale * projected(panel, mm);
}

int BrainLayout::panelAt(const QPointF &place) const
{
    for (int panel = 0; panel < 3; ++panel)
        if (panels[std::size_t(panel)].contains(place))
            return panel;
    return -1;
}

int BrainLayout::nodeAt(const QPointF &at, const BrainPicture &picture, double reach) const
{
    const int panel = panelAt(at);
    int nearest = -1;
    for (std::size_t node = 0; panel >= 0 && node < picture.places.size(); ++node) {
        if (!picture.places[node])
            continue;
        const QPointF from = place(panel, *picture.places[node]) - at;
        const double distance = std::hypot(from.x(), from.y());
        if (distance <= reach) {
            reach = distance;
            nearest = int(node);
        }
    }
    return nearest;
}

BrainLayout brainLayout(const QRectF &area, const BrainPicture &picture)
{
    BrainLayout layout;
    const double title = picture.network.title.isEmpty() ? 0 : titleHeight;
    const QRectF inner(area.left() + gap, area.top() + title, std::max(1.0, area.width() - 2 * gap),
                       std::max(1.0, area.height() - title - scaleHeight - 2 * gap));
    std::array<QRectF, 3> extents;
    double width = 0, height = 0;
    for (int panel = 0; panel < 3; ++panel) {
        extents[std::size_t(panel)] = extentOf(panel, picture);
        width += extents[std::size_t(panel)].width();
        height = std::max(height, extents[std::size_t(panel)].height());
    }
    layout.scale = std::max(1e-3, std::min((inner.width() - 6 * gap) / width,
                                           (inner.height() - captionHeight - gap) / height));
    const double spare = (inner.width() - width * layout.scale) / 3;
    double left = inner.left();
    for (std::size_t panel = 0; panel < 3; ++panel) {
        const double wide = extents[panel].width() * layout.scale + spare;
        layout.panels[panel] = QRectF(left, inner.top(), wide, inner.height());
        const QPointF middle(left + wide / 2, inner.top() + (inner.height() - captionHeight) / 2);
        layout.origins[panel] = middle - layout.scale * extents[panel].center();
        left += wide;
    }
    return layout;
}

void paintBrain(QPainter &painter, const QRectF &area, const BrainPicture &picture)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(area, paperOf(painter));
    paintTitle(painter, QRectF(area.left(), area.top(), area.width(), titleHeight),
               picture.network.title);
    const BrainLayout layout = brainLayout(area, picture);
    for (int panel = 0; panel < 3; ++panel)
        paintPanel(painter, layout, panel, picture);
    const QRectF below(area.left() + gap, area.bottom() - scaleHeight - gap, area.width() - 2 * gap,
                       scaleHeight);
    const double width = std::min(below.width() / 2, 300.0);
    paintFoot(painter,
              QRectF(below.topLeft(), QSizeF(below.width() - width - 2 * gap, scaleHeight)),
              footOf(picture));
    paintScale(painter, QRectF(below.right() - width, below.top(), width, scaleHeight),
               picture.network.limit);
    painter.restore();
}

} // namespace corvane
