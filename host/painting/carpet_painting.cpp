// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/painting/carpet_painting.h"

#include "host/painting/grey_cells.h"
#include "host/painting/group_bar.h"
#include "host/painting/labels.h"
#include "host/painting/volume_axis.h"

#include <cmath>

namespace corvane
{

namespace
{

constexpr double barWidth = 10;
/// Beside each other hardly more are told apart.
constexpr int levels = 16;

QImage cells(const Eigen::MatrixXd &values, double limit)
{
    QImage image(int(values.cols()), int(values.rows()), QImage::Format_ARGB32);
    for (int node = 0; node < image.height(); ++node) {
        auto *line = reinterpret_cast<QRgb *>(image.scanLine(node));
        const bool hasValues = !values.row(node).array().isNaN().all();
        for (int volume = 0; volume < image.width(); ++volume) {
            const double value = values(node, volume);
            if (std::isnan(value))
                line[volume] = hasValues ? qRgba(0, 0, 0, 0) : qRgb(214, 226, 240);
            else
                line[volume] = greyValue(limit > 0 ? (value / limit + 1) / 2 : 0.5, levels);
        }
    }
    return image;
}

} // namespace

void paintCarpet(QPainter &painter, const QRectF &area, const CarpetPicture &picture)
{
    painter.save();
    painter.fillRect(area, Qt::white);
    const QRectF plot = volumeArea(area);
    paintLeftOut(painter, plot, picture.leftOut);
    if (picture.values.size() > 0) {
        painter.setRenderHint(QPainter::SmoothPixmapTransform, false);
        const QSize pixels = pixelsOf(painter, plot);
        painter.drawImage(
            plot, cells(reduced(picture.values, pixels.height(), pixels.width()), picture.limit));
    }
    painter.setFont(labelFont(painter, 12));
    if (picture.groups.empty()) {
        painter.setPen(Qt::black);
        painter.drawText(QRectF(area.left(), plot.top(), axisLeft - 8, plot.height()),
                         Qt::AlignRight | Qt::AlignVCenter,
                         QStringLiteral("%1 nodes").arg(picture.values.rows()));
    }
    paintGroupBar(painter, QRectF(plot.left() - barWidth - 2, plot.top(), barWidth, plot.height()),
                  picture.groups, int(picture.values.rows()), axisLeft - barWidth - 4);
    paintVolumeAxis(painter, area, picture.title, int(picture.values.cols()));
    painter.restore();
}

} // namespace corvane
