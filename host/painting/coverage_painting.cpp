// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/painting/coverage_painting.h"

#include "host/painting/labels.h"

#include <QImage>
#include <algorithm>
#include <cmath>

namespace corvane
{

namespace
{

constexpr double gap = 40;
constexpr double titleHeight = 24;
constexpr double barsHeight = 110;
constexpr double numbersRoom = 56;

QImage cells(const AtlasView &view, double least)
{
    QImage image(int(view.values.cols()), int(view.values.rows()), QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    for (int row = 0; row < image.height(); ++row)
        for (int column = 0; column < image.width(); ++column)
            if (!std::isnan(view.values(row, column)))
                image.setPixelColor(column, row, coverageColour(view.values(row, column), least));
    return image;
}

void paintView(QPainter &painter, const QRectF &area, const AtlasView &view, double scale,
               double least)
{
    const double width = view.width * scale;
    const double height = view.height * scale;
    const double space = area.height() - titleHeight - height;
    const QRectF map(area.center().x() - width / 2, area.top() + titleHeight + space / 2, width,
                     height);
    painter.drawImage(map, cells(view, least));
    const QRectF title(area.left(), map.top() - titleHeight, area.width(), titleHeight - 4);
    painter.setPen(Qt::black);
    painter.drawText(title, Qt::AlignHCenter | Qt::AlignBottom, view.title);
    painter.drawText(title, Qt::AlignLeft | Qt::AlignBottom, view.left);
    painter.drawText(title, Qt::AlignRight | Qt::AlignBottom, view.right);
}

void paintViews(QPainter &painter, const QRectF &area, const CoveragePicture &picture)
{
    double width = 0;
    double height = 1;
    for (const AtlasView &view : picture.views) {
        width += view.width;
        height = std::max(height, view.height);
    }
    const double scale = std::min((area.width() - 2 * gap) / std::max(width, 1.0),
                                  (area.height() - titleHeight) / height);
    double left = area.left() + (area.width() - scale * width - 2 * gap) / 2;
    for (const AtlasView &view : picture.views) {
        const double room = view.width * scale;
        paintView(painter, QRectF(left, area.top(), room, area.height()), view, scale,
                  picture.least);
        left += room + gap;
    }
}

void paintBars(QPainter &painter, const QRectF &area, const CoveragePicture &picture)
{
    std::vector<double> coverage = picture.coverage;
    std::sort(coverage.begin(), coverage.end());
    const QRectF plot(area.left() + numbersRoom, area.top() + 6, area.width() - numbersRoom - 16,
                      area.height() - titleHeight - 6);
    const double width = plot.width() / double(std::max<std::size_t>(coverage.size(), 1));
    for (std::size_t n = 0; n < coverage.size(); ++n) {
        const double height = plot.height() * std::clamp(coverage[n], 0.0, 1.0);
        painter.fillRect(QRectF(plot.left() + double(n) * width, plot.bottom() - height,
                                width > 4 ? width - 1 : width, height),
                         coverageColour(coverage[n], picture.least));
    }
    painter.setPen(QPen(QColor(190, 60, 20), 1, Qt::DashLine));
    const double least = plot.bottom() - plot.height() * picture.least;
    painter.drawLine(QPointF(plot.left(), least), QPointF(plot.right(), least));
    painter.setPen(Qt::black);
    painter.drawLine(plot.bottomLeft(), plot.bottomRight());
    for (const double share : {0.0, 0.5, 1.0})
        painter.drawText(
            QRectF(area.left(), plot.bottom() - plot.height() * share - 10, numbersRoom - 8, 20),
            Qt::AlignRight | Qt::AlignVCenter, QStringLiteral("%1 %").arg(100 * share));
    painter.drawText(
        QRectF(plot.left(), plot.bottom(), plot.width(), titleHeight), Qt::AlignCenter,
        QStringLiteral("coverage of all %1 nodes, the lowest first").arg(coverage.size()));
}

} // namespace

QColor coverageColour(double coverage, double least)
{
    if (!(coverage >= least) || coverage <= 0)
        return {200, 30, 40};
    constexpr double stops[5][3] = {
        {68, 1, 84}, {59, 82, 139}, {33, 145, 140}, {94, 201, 98}, {222, 226, 110}};
    const double place = std::clamp(coverage, 0.0, 1.0) * 4;
    const int lower = std::min(int(place), 3);
    const double rest = place - lower;
    const auto channel = [&](int n) {
        return int(std::lround(stops[lower][n] + rest * (stops[lower + 1][n] - stops[lower][n])));
    };
    return {channel(0), channel(1), channel(2)};
}

void paintCoverage(QPainter &painter, const QRectF &area, const CoveragePicture &picture)
{
    painter.save();
    painter.fillRect(area, Qt::white);
    painter.setRenderHint(QPainter::SmoothPixmapTransform, false);
    painter.setFont(labelFont(painter, 13));
    paintViews(painter,
               QRectF(area.left(), area.top(), area.width(), area.height() - barsHeight - 20),
               picture);
    paintBars(painter, QRectF(area.left(), area.bottom() - barsHeight, area.width(), barsHeight),
              picture);
    painter.restore();
}

} // namespace corvane
