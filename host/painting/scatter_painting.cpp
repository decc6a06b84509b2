// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/painting/scatter_painting.h"

#include "host/painting/labels.h"
#include "host/painting/picture_colours.h"
#include "host/painting/volume_axis.h"

#include <QFontMetricsF>
#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace corvane
{

namespace
{

constexpr double titleHeight = 36;
constexpr double footHeight = 24;
constexpr double axisHeight = 48;
constexpr double axisWidth = 76;
constexpr double gap = 12;
constexpr int fontSize = 13;

const QColor pointColour(33, 102, 172);
const QColor pointOnDark(146, 197, 222);
const QColor lineColour(178, 24, 43);
const QColor lineOnDark(244, 165, 130);

/// The ends of an axis.
struct Range {
    double low = std::numeric_limits<double>::infinity();
    double high = -std::numeric_limits<double>::infinity();

    void take(double value)
    {
        low = std::min(low, value);
        high = std::max(high, value);
    }
    /// A little wider than what it holds, and never without width.
    Range widened() const
    {
        if (low > high)
            return {0, 1};
        const double more = high > low ? 0.04 * (high - low) : std::max(1.0, std::abs(low)) / 2;
        return {low - more, high + more};
    }
};

bool isPoint(const ScatterPicture &picture, Eigen::Index i)
{
    return std::isfinite(picture.xs(i)) && std::isfinite(picture.ys(i));
}

/// From numbers to places.
struct Plot {
    QRectF area;
    Range x, y;

    QPointF place(double atX, double atY) const
    {
        return {area.left() + area.width() * (atX - x.low) / (x.high - x.low),
                area.bottom() - area.height() * (atY - y.low) / (y.high - y.low)};
    }
};

Plot plotOf(const QRectF &area, const ScatterPicture &picture)
{
    Range x, y;
    for (Eigen::Index i = 0; i < picture.xs.size(); ++i) {
        if (!isPoint(picture, i))
            continue;
        x.take(picture.xs(i));
        y.take(picture.ys(i));
    }
    const double foot = picture.foot.isEmpty() ? 0 : footHeight;
    const QRectF inner(area.left() + axisWidth, area.top() + titleHeight,
                       std::max(1.0, area.width() - axisWidth - 2 * gap),
                       std::max(1.0, area.height() - titleHeight - axisHeight - foot));
    const bool isGiven = picture.low < picture.high;
    return {inner, x.widened(), isGiven ? Range{picture.low, picture.high} : y.widened()};
}

/// The round numbers of an axis.
std::vector<double> ticksOf(const Range &range)
{
    const double step = roundStep(range.high - range.low, 6);
    std::vector<double> ticks;
    for (double n = std::ceil(range.low / step - 1e-9); n * step <= range.high + 1e-9 * step; ++n)
        ticks.push_back(n == 0 ? 0 : n * step);
    return ticks;
}

void paintTicks(QPainter &painter, const Plot &plot)
{
    for (const double tick : ticksOf(plot.x)) {
        const QPointF at(plot.place(tick, plot.y.low));
        painter.setPen(faintOf(painter));
        painter.drawLine(QPointF(at.x(), plot.area.top()), QPointF(at.x(), plot.area.bottom()));
        painter.setPen(inkOf(painter));
        painter.drawText(QRectF(at.x() - 50, plot.area.bottom() + 4, 100, 18),
                         Qt::AlignHCenter | Qt::AlignTop, QString::number(tick, 'g', 4));
    }
    for (const double tick : ticksOf(plot.y)) {
        const QPointF at(plot.place(plot.x.low, tick));
        painter.setPen(tick == 0 ? QColor(Qt::gray) : faintOf(painter));
        painter.drawLine(QPointF(plot.area.left(), at.y()), QPointF(plot.area.right(), at.y()));
        painter.setPen(inkOf(painter));
        painter.drawText(QRectF(plot.area.left() - 56, at.y() - 10, 50, 20),
                         Qt::AlignRight | Qt::AlignVCenter, QString::number(tick, 'g', 4));
    }
}

void paintAxes(QPainter &painter, const QRectF &area, const Plot &plot,
               const ScatterPicture &picture)
{
    paintTicks(painter, plot);
    painter.setPen(inkOf(painter));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(plot.area);
    painter.drawText(QRectF(plot.area.left(), plot.area.bottom() + 22, plot.area.width(), 22),
                     Qt::AlignCenter, picture.x);
    painter.save();
    painter.translate(area.left() + 4, plot.area.bottom());
    painter.rotate(-90);
    painter.drawText(QRectF(0, 0, plot.area.height(), 20), Qt::AlignCenter, picture.y);
    painter.restore();
}

void paintPoints(QPainter &painter, const Plot &plot, const ScatterPicture &picture)
{
    // 100 points are dots of 4 pixels, 80,000 a cloud.
    const double crowd = std::sqrt(100.0 / std::max<double>(100.0, double(picture.xs.size())));
    QColor colour = isDark(paperOf(painter)) ? pointOnDark : pointColour;
    colour.setAlphaF(std::max(0.08, 0.7 * std::sqrt(crowd)));
    const double radius = std::max(1.2, 4 * std::sqrt(crowd));
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour);
    for (Eigen::Index i = 0; i < picture.xs.size(); ++i)
        if (isPoint(picture, i))
            painter.drawEllipse(plot.place(picture.xs(i), picture.ys(i)), radius, radius);
}

/// Slope and intercept of the straight line of least squares; no slope where x does not vary.
std::pair<double, double> lineOf(const ScatterPicture &picture)
{
    double n = 0, x = 0, y = 0;
    for (Eigen::Index i = 0; i < picture.xs.size(); ++i) {
        if (!isPoint(picture, i))
            continue;
        n += 1;
        x += picture.xs(i);
        y += picture.ys(i);
    }
    x /= n;
    y /= n;
    double xx = 0, xy = 0;
    for (Eigen::Index i = 0; i < picture.xs.size(); ++i) {
        if (!isPoint(picture, i))
            continue;
        xx += (picture.xs(i) - x) * (picture.xs(i) - x);
        xy += (picture.xs(i) - x) * (picture.ys(i) - y);
    }
    const double slope = xx > 0 ? xy / xx : std::numeric_limits<double>::quiet_NaN();
    return {slope, y - slope * x};
}

void paintLine(QPainter &painter, const Plot &plot, const ScatterPicture &picture)
{
    const auto [slope, intercept] = lineOf(picture);
    if (!std::isfinite(slope))
        return;
    painter.setPen(QPen(isDark(paperOf(painter)) ? lineOnDark : lineColour, 2));
    painter.drawLine(plot.place(plot.x.low, intercept + slope * plot.x.low),
                     plot.place(plot.x.high, intercept + slope * plot.x.high));
}

} // namespace

void paintScatter(QPainter &painter, const QRectF &area, const ScatterPicture &picture)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(area, paperOf(painter));
    paintTitle(painter, QRectF(area.left(), area.top(), area.width(), titleHeight), picture.title);
    painter.setFont(labelFont(painter, fontSize));
    const Plot plot = plotOf(area, picture);
    paintAxes(painter, area, plot, picture);
    painter.setPen(inkOf(painter));
    painter.drawText(
        QRectF(plot.area.left(), area.bottom() - footHeight, plot.area.width(), footHeight),
        Qt::AlignCenter, picture.foot);
    painter.setClipRect(plot.area);
    paintPoints(painter, plot, picture);
    if (picture.hasLine)
        paintLine(painter, plot, picture);
    painter.restore();
}

} // namespace corvane
