// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/painting/measure_painting.h"

#include "host/painting/labels.h"
#include "host/painting/picture_colours.h"
#include "host/painting/volume_axis.h"

#include <QFontMetricsF>
#include <QPainterPath>
#include <algorithm>
#include <cmath>

namespace corvane
{

namespace
{

constexpr double titleHeight = 30;
constexpr double footHeight = 24;
constexpr double gap = 8;
constexpr double axisWidth = 46;

double topOf(const MeasureCurve &curve)
{
    double top = 0;
    for (const Eigen::ArrayXd *values : {&curve.network, &curve.node})
        for (const double value : *values)
            top = std::isfinite(value) ? std::max(top, value) : top;
    return top > 0 ? 1.08 * top : 1;
}

struct Plot {
    QRectF area;
    double first, last, top;

    QPointF place(double x, double y) const
    {
        const double range = last > first ? last - first : 1;
        return {area.left() + area.width() * (x - first) / range,
                area.bottom() - area.height() * y / top};
    }
};

QPainterPath lineOf(const Plot &plot, const std::vector<double> &x, const Eigen::ArrayXd &y)
{
    QPainterPath path;
    for (std::size_t n = 0; n < x.size(); ++n) {
        const QPointF point = plot.place(x[n], y[Eigen::Index(n)]);
        if (n == 0)
            path.moveTo(point);
        else
            path.lineTo(point);
    }
    return path;
}

void paintAxes(QPainter &painter, const Plot &plot)
{
    painter.setFont(labelFont(painter, 11));
    const double step = roundStep(plot.top, 4);
    for (int n = 0; n * step <= plot.top; ++n) {
        const QPointF at = plot.place(plot.first, n * step);
        painter.setPen(faintOf(painter));
        painter.drawLine(at, QPointF(plot.area.right(), at.y()));
        painter.setPen(inkOf(painter));
        painter.drawText(QRectF(at.x() - axisWidth, at.y() - 9, axisWidth - 5, 18),
                         Qt::AlignRight | Qt::AlignVCenter, QString::number(n * step, 'g', 3));
    }
    for (const double x : {plot.first, plot.last})
        painter.drawText(QRectF(plot.place(x, 0).x() - 40, plot.area.bottom() + 2, 80, 16),
                         Qt::AlignCenter, QString::number(100 * x, 'g', 3) + QStringLiteral(" %"));
}

void paintCurve(QPainter &painter, const QRectF &area, const MeasurePicture &picture,
                const MeasureCurve &curve)
{
    const Plot plot{QRectF(area.left() + axisWidth, area.top() + 22, area.width() - axisWidth - 24,
                           area.height() - 22 - 24),
                    picture.densities.front(), picture.densities.back(), topOf(curve)};
    paintAxes(painter, plot);
    const bool onDark = isDark(paperOf(painter));
    const QColor networkColour = onDark ? QColor(146, 197, 222) : QColor(33, 102, 172);
    const QColor nodeColour = onDark ? QColor(244, 165, 130) : QColor(214, 96, 77);
    const QPainterPath line = lineOf(plot, picture.densities, curve.network);
    QPainterPath below = line;
    below.lineTo(plot.place(plot.last, 0));
    below.lineTo(plot.place(plot.first, 0));
    below.closeSubpath();
    QColor shade = networkColour;
    shade.setAlpha(48);
    painter.fillPath(below, shade);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(networkColour, 1.8));
    painter.drawPath(line);
    QString numbers = QStringLiteral(": ") + QString::number(curve.area, 'g', 3);
    if (curve.node.size() > 0) {
        painter.setPen(QPen(nodeColour, 1.8));
        painter.drawPath(lineOf(plot, picture.densities, curve.node));
        numbers += QStringLiteral(", node %1").arg(QString::number(curve.nodeArea, 'g', 3));
    }
    if (picture.now >= plot.first && picture.now <= plot.last) {
        painter.setPen(QPen(inkOf(painter), 1, Qt::DashLine));
        painter.drawLine(plot.place(picture.now, 0), plot.place(picture.now, plot.top));
    }
    painter.setPen(inkOf(painter));
    painter.setFont(labelFont(painter, 12));
    const QFontMetricsF metrics(painter.font());
    const QString name = metrics.elidedText(
        curve.name, Qt::ElideRight, area.width() - 2 * gap - metrics.horizontalAdvance(numbers));
    painter.drawText(QRectF(area.left() + gap, area.top(), area.width() - gap, 22),
                     Qt::AlignLeft | Qt::AlignVCenter, name + numbers);
}

} // namespace

void paintMeasures(QPainter &painter, const QRectF &area, const MeasurePicture &picture)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(area, paperOf(painter));
    paintTitle(painter, QRectF(area.left(), area.top(), area.width(), titleHeight), picture.title);
    paintFoot(
        painter,
        QRectF(area.left() + gap, area.bottom() - footHeight, area.width() - 2 * gap, footHeight),
        picture.foot);
    const int count = int(picture.curves.size());
    if (!picture.densities.empty() && count > 0) {
        const QRectF inner(area.left(), area.top() + titleHeight, area.width(),
                           area.height() - titleHeight - footHeight);
        const int most = std::max(1, int(inner.width() / 130));
        const double wanted = std::sqrt(count * inner.width() / inner.height() / 1.4);
        const int columns = std::clamp(int(std::lround(wanted)), 1, std::min(count, most));
        const int rows = (count + columns - 1) / columns;
        for (int n = 0; n < count; ++n) {
            const int row = n / columns;
            paintCurve(painter,
                       QRectF(inner.left() + inner.width() * (n % columns) / columns,
                              inner.top() + inner.height() * row / rows, inner.width() / columns,
                              inner.height() / rows),
                       picture, picture.curves[std::size_t(n)]);
        }
    }
    painter.restore();
}

} // namespace corvane
