// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/painting/histogram_painting.h"

#include "host/painting/labels.h"
#include "host/painting/volume_axis.h"

#include <QPainterPath>
#include <algorithm>
#include <cmath>

namespace corvane
{

namespace
{

constexpr double margin = 24;
constexpr double axisHeight = 46;
constexpr double legendHeight = 24;
constexpr int steps = 60;

QRectF plotOf(const QRectF &area, double legend)
{
    return {area.left() + margin, area.top() + legend, std::max(1.0, area.width() - 2 * margin),
            std::max(1.0, area.height() - legend - axisHeight)};
}

double placeOf(const HistogramPicture &picture, const QRectF &plot, double value)
{
    const double share = (value - picture.low) / (picture.high - picture.low);
    return plot.left() + plot.width() * std::clamp(share, 0.0, 1.0);
}

void paintAxis(QPainter &painter, const HistogramPicture &picture, const QRectF &plot)
{
    painter.setPen(Qt::black);
    painter.drawLine(plot.bottomLeft(), plot.bottomRight());
    const double step = roundStep(picture.high - picture.low, 8);
    for (double n = std::ceil(picture.low / step - 1e-9); n * step <= picture.high + 1e-9 * step;
         ++n) {
        const double x = placeOf(picture, plot, n * step);
        painter.drawLine(QPointF(x, plot.bottom()), QPointF(x, plot.bottom() + 4));
        painter.drawText(QRectF(x - 40, plot.bottom() + 4, 80, 18), Qt::AlignHCenter | Qt::AlignTop,
                         QString::number(n == 0 ? 0 : n * step));
    }
    painter.drawText(QRectF(plot.left(), plot.bottom() + 22, plot.width(), 20), Qt::AlignCenter,
                     picture.title);
}

void paintLine(QPainter &painter, const HistogramPicture &picture, const QRectF &plot)
{
    if (!picture.line || *picture.line < picture.low || *picture.line > picture.high)
        return;
    const double x = placeOf(picture, plot, *picture.line);
    painter.setPen(QPen(QColor(190, 60, 20), 1, Qt::DashLine));
    painter.drawLine(QPointF(x, plot.top()), QPointF(x, plot.bottom()));
}

/// The share of the values in each step.
std::vector<double> sharesOf(const HistogramPicture &picture, const Sample &sample)
{
    std::vector<double> shares(steps);
    double count = 0;
    for (const double value : sample.values)
        count += std::isfinite(value) ? 1 : 0;
    for (const double value : sample.values) {
        if (!std::isfinite(value))
            continue;
        const double share = (value - picture.low) / (picture.high - picture.low);
        shares[std::size_t(std::clamp(int(share * steps), 0, steps - 1))] += 1 / count;
    }
    return shares;
}

void paintSteps(QPainter &painter, const QRectF &plot, const std::vector<double> &shares,
                double highest, const QColor &colour)
{
    QPainterPath path(plot.bottomLeft());
    for (int step = 0; step < steps; ++step) {
        const double y = plot.bottom() - plot.height() * shares[std::size_t(step)] / highest;
        path.lineTo(plot.left() + plot.width() * step / steps, y);
        path.lineTo(plot.left() + plot.width() * (step + 1) / steps, y);
    }
    path.lineTo(plot.bottomRight());
    QColor filling = colour;
    filling.setAlphaF(0.2);
    painter.fillPath(path, filling);
    painter.setPen(QPen(colour, 1.5));
    painter.drawPath(path);
}

void paintLegend(QPainter &painter, const QRectF &area, const std::vector<Sample> &samples)
{
    double left = area.left() + margin;
    for (const Sample &sample : samples) {
        painter.fillRect(QRectF(left, area.top() + 6, 14, 12), sample.colour);
        painter.setPen(Qt::black);
        QRectF text;
        painter.drawText(QRectF(left + 20, area.top(), area.right() - left - 20, legendHeight),
                         Qt::AlignLeft | Qt::AlignVCenter, sample.name, &text);
        left = text.right() + 24;
    }
}

} // namespace

void paintHistogram(QPainter &painter, const QRectF &area, const HistogramPicture &picture)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(area, Qt::white);
    painter.setFont(labelFont(painter, 13));
    const QRectF plot = plotOf(area, legendHeight);
    std::vector<std::vector<double>> shares;
    double highest = 0;
    for (const Sample &sample : picture.samples) {
        shares.push_back(sharesOf(picture, sample));
        highest = std::max(highest, *std::max_element(shares.back().begin(), shares.back().end()));
    }
    for (std::size_t n = 0; n < shares.size() && highest > 0; ++n)
        paintSteps(painter, plot, shares[n], highest, picture.samples[n].colour);
    paintLine(painter, picture, plot);
    paintAxis(painter, picture, plot);
    paintLegend(painter, area, picture.samples);
    painter.restore();
}

void paintStrip(QPainter &painter, const QRectF &area, const HistogramPicture &picture)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(area, Qt::white);
    painter.setFont(labelFont(painter, 13));
    const QRectF plot = plotOf(area, 4);
    const int columns = std::max(1, int(plot.width() / 7));
    std::vector<std::vector<QColor>> stacks{std::size_t(columns)};
    for (const Sample &sample : picture.samples)
        for (const double value : sample.values) {
            if (!std::isfinite(value))
                continue;
            const double share = (placeOf(picture, plot, value) - plot.left()) / plot.width();
            stacks[std::size_t(std::clamp(int(share * columns), 0, columns - 1))].push_back(
                sample.colour);
        }
    std::size_t highest = 1;
    for (const auto &stack : stacks)
        highest = std::max(highest, stack.size());
    const double spacing = std::min(7.0, (plot.height() - 6) / double(highest));
    painter.setPen(Qt::NoPen);
    for (int column = 0; column < columns; ++column) {
        double y = plot.bottom() - 4;
        for (const QColor &colour : stacks[std::size_t(column)]) {
            painter.setBrush(colour);
            painter.drawEllipse(QPointF(plot.left() + (column + 0.5) * plot.width() / columns, y),
                                3.2, 3.2);
            y -= spacing;
        }
    }
    paintLine(painter, picture, plot);
    paintAxis(painter, picture, plot);
    painter.restore();
}

} // namespace corvane
