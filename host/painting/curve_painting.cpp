// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/painting/curve_painting.h"

#include "host/painting/labels.h"
#include "host/painting/volume_axis.h"

#include <QPainterPath>
#include <algorithm>
#include <cmath>

namespace corvane
{

namespace
{

const QColor lineColour(0, 90, 160);
const QColor thresholdColour(190, 60, 20);

std::vector<double> finiteValues(const Eigen::ArrayXd &values)
{
    std::vector<double> found;
    for (const double value : values)
        if (std::isfinite(value))
            found.push_back(value);
    std::sort(found.begin(), found.end());
    return found;
}

void paintScaleAtLeft(QPainter &painter, const QRectF &plot, double top)
{
    const double step = roundStep(top, 3);
    for (int n = 0; n * step <= top * (1 + 1e-9); ++n) {
        const double y = plot.bottom() - plot.height() * n * step / top;
        painter.setPen(QColor(225, 225, 225));
        painter.drawLine(QPointF(plot.left(), y), QPointF(plot.right(), y));
        painter.setPen(Qt::black);
        painter.drawText(QRectF(plot.left() - axisLeft, y - 10, axisLeft - 8, 20),
                         Qt::AlignRight | Qt::AlignVCenter, QString::number(n * step));
    }
}

/// Arrows at the top for values that the scale does not reach.
void paintArrow(QPainter &painter, const QPointF &tip)
{
    QPainterPath path(tip);
    path.lineTo(tip + QPointF(-4, 7));
    path.lineTo(tip + QPointF(4, 7));
    path.closeSubpath();
    painter.fillPath(path, lineColour);
}

void paintLine(QPainter &painter, const QRectF &plot, const Eigen::ArrayXd &values, double top)
{
    const int volumes = int(values.size());
    QPainterPath path;
    bool drawing = false;
    const auto middle = [&](int volume) {
        return (volumePlace(plot, volume, volumes) + volumePlace(plot, volume + 1, volumes)) / 2;
    };
    for (int volume = 0; volume < volumes; ++volume) {
        const double value = values[volume];
        if (!std::isfinite(value)) {
            drawing = false;
            continue;
        }
        const QPointF point(middle(volume),
                            plot.bottom() - plot.height() * std::clamp(value / top, 0.0, 1.0));
        if (drawing)
            path.lineTo(point);
        else {
            // A value between two that are missing is a dash as wide as its volume.
            path.moveTo(point - QPointF(0.5, 0));
            path.lineTo(point + QPointF(0.5, 0));
        }
        drawing = true;
        if (value > top)
            paintArrow(painter, point);
    }
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(lineColour, 1.3));
    painter.drawPath(path);
}

} // namespace

double curveTop(const CurvePicture &picture)
{
    const std::vector<double> values = finiteValues(picture.values);
    if (values.empty() || !(values.back() > 0))
        return picture.threshold > 0 ? 2 * picture.threshold : 1;
    const double usual = std::max(4 * values[(values.size() - 1) * 9 / 10], 2 * picture.threshold);
    return usual > 0 ? std::min(values.back() * 1.05, usual) : values.back();
}

void paintCurve(QPainter &painter, const QRectF &area, const CurvePicture &picture)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(area, Qt::white);
    const QRectF plot = volumeArea(area);
    const double top = std::max(curveTop(picture), picture.threshold * 1.2);
    paintLeftOut(painter, plot, picture.leftOut);
    painter.setFont(labelFont(painter, 13));
    paintScaleAtLeft(painter, plot, top);
    paintLine(painter, plot, picture.values, top);
    if (picture.threshold > 0) {
        const double y = plot.bottom() - plot.height() * picture.threshold / top;
        painter.setPen(QPen(thresholdColour, 1, Qt::DashLine));
        painter.drawLine(QPointF(plot.left(), y), QPointF(plot.right(), y));
    }
    painter.setPen(Qt::black);
    painter.drawLine(plot.bottomLeft(), plot.bottomRight());
    paintVolumeAxis(painter, area, picture.title, int(picture.values.size()));
    painter.restore();
}

} // namespace corvane
