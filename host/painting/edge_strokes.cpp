// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/painting/edge_strokes.h"

#include "host/painting/colour_map.h"
#include "host/painting/line_pixels.h"
#include "host/painting/picture_colours.h"

#include <algorithm>
#include <cmath>

namespace corvane
{

namespace
{

double strengthOf(double value, double limit)
{
    return limit > 0 ? std::min(std::abs(value) / limit, 1.0) : 0;
}

double widthOf(double strength)
{
    return 0.5 + 3 * strength;
}

QColor colourOf(double value, double strength, bool onDark)
{
    QColor colour = divergingColour(std::copysign(0.4 + 0.6 * strength, value), 1, onDark);
    colour.setAlphaF(0.15 + 0.85 * strength);
    return colour;
}

bool hasPixels(const QPaintDevice &device)
{
    return device.devType() == QInternal::Image || device.devType() == QInternal::Pixmap;
}

void paintOnPixels(QPainter &painter, const QRectF &area, const std::vector<EdgeStroke> &strokes,
                   double limit)
{
    const double ratio = painter.device()->devicePixelRatioF();
    const QSize size(int(painter.device()->width() * ratio),
                     int(painter.device()->height() * ratio));
    const QRect pixels =
        painter.deviceTransform().mapRect(area).toAlignedRect().adjusted(-2, -2, 2, 2) &
        QRect(QPoint(0, 0), size);
    if (pixels.isEmpty() || strokes.empty())
        return;
    const QTransform toPixels =
        painter.deviceTransform() * QTransform::fromTranslate(-pixels.x(), -pixels.y());
    const double scale = std::sqrt(std::abs(toPixels.determinant()));
    const bool onDark = isDark(paperOf(painter));
    std::vector<PixelLine> lines;
    lines.reserve(strokes.size());
    for (const EdgeStroke &stroke : strokes) {
        const double strength = strengthOf(stroke.value, limit);
        lines.push_back({toPixels.map(stroke.from), toPixels.map(stroke.control),
                         toPixels.map(stroke.to), scale * widthOf(strength),
                         colourOf(stroke.value, strength, onDark)});
    }
    QImage image(pixels.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    paintLines(image, lines);
    image.setDevicePixelRatio(ratio);
    painter.save();
    painter.setWorldTransform({});
    painter.drawImage(QPointF(pixels.topLeft()) / ratio, image);
    painter.restore();
}

} // namespace

QPainterPath strokePath(const EdgeStroke &stroke)
{
    QPainterPath path(stroke.from);
    if (stroke.control == (stroke.from + stroke.to) / 2)
        path.lineTo(stroke.to);
    else
        path.quadTo(stroke.control, stroke.to);
    return path;
}

QPen edgePen(double value, double limit, bool onDark)
{
    const double strength = strengthOf(value, limit);
    return {colourOf(value, strength, onDark), widthOf(strength)};
}

void paintStrokes(QPainter &painter, const QRectF &area, const std::vector<EdgeStroke> &strokes,
                  double limit)
{
    if (hasPixels(*painter.device())) {
        paintOnPixels(painter, area, strokes, limit);
        return;
    }
    const bool onDark = isDark(paperOf(painter));
    painter.setBrush(Qt::NoBrush);
    for (const EdgeStroke &stroke : strokes) {
        painter.setPen(edgePen(stroke.value, limit, onDark));
        painter.drawPath(strokePath(stroke));
    }
}

} // namespace corvane
