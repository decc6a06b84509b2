// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/painting/volume_axis.h"

#include "host/painting/labels.h"
#include "host/painting/picture_colours.h"

#include <QFontMetricsF>
#include <algorithm>
#include <cmath>

namespace corvane
{

namespace
{

constexpr int textSize = 13;

} // namespace

QRectF volumeArea(const QRectF &area)
{
    return {area.left() + axisLeft, area.top() + axisTitle,
            std::max(1.0, area.width() - axisLeft - axisRight),
            std::max(1.0, area.height() - axisTitle - axisNumbers)};
}

double volumePlace(const QRectF &plot, int volume, int volumes)
{
    return plot.left() + plot.width() * volume / std::max(volumes, 1);
}

void paintLeftOut(QPainter &painter, const QRectF &plot, const std::vector<bool> &leftOut)
{
    const int volumes = int(leftOut.size());
    for (int first = 0; first < volumes; ++first) {
        if (!leftOut[std::size_t(first)])
            continue;
        int behind = first + 1;
        while (behind < volumes && leftOut[std::size_t(behind)])
            ++behind;
        const double left = volumePlace(plot, first, volumes);
        painter.fillRect(
            QRectF(left, plot.top(), volumePlace(plot, behind, volumes) - left, plot.height()),
            leftOutColour(painter));
        first = behind;
    }
}

void paintVolumeAxis(QPainter &painter, const QRectF &area, const QString &title, int volumes)
{
    painter.save();
    const QRectF plot = volumeArea(area);
    painter.setPen(inkOf(painter));
    painter.setFont(labelFont(painter, textSize));
    painter.drawText(QRectF(plot.left(), area.top(), plot.width(), axisTitle),
                     Qt::AlignLeft | Qt::AlignVCenter, title);
    const int step = std::max(1, int(roundStep(volumes, 10)));
    for (int volume = 0; volume < volumes; volume += step) {
        const double place = volumePlace(plot, volume, volumes);
        painter.drawLine(QPointF(place, plot.bottom()), QPointF(place, plot.bottom() + 4));
        painter.drawText(QRectF(place - 40, plot.bottom() + 4, 80, axisNumbers - 4),
                         Qt::AlignHCenter | Qt::AlignTop, QString::number(volume));
    }
    painter.restore();
}

double roundStep(double range, int most)
{
    if (!(range > 0) || !std::isfinite(range))
        return 1;
    const double least = range / std::max(most, 1);
    const double power = std::pow(10, std::floor(std::log10(least)));
    for (const double factor : {1.0, 2.0, 5.0})
        if (factor * power >= least * (1 - 1e-9))
            return factor * power;
    return 10 * power;
}

} // namespace corvane
