// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/painting/design_painting.h"

#include "host/painting/grey_cells.h"
#include "host/painting/labels.h"

#include <QFontMetricsF>
#include <algorithm>

namespace corvane
{

namespace
{

constexpr double gap = 8;

QImage cells(const Eigen::MatrixXd &columns)
{
    QImage image(int(columns.cols()), int(columns.rows()), QImage::Format_RGB32);
    for (int column = 0; column < image.width(); ++column) {
        const double limit = columns.col(column).cwiseAbs().maxCoeff();
        for (int row = 0; row < image.height(); ++row) {
            const double share = limit > 0 ? (columns(row, column) / limit + 1) / 2 : 0.5;
            image.setPixel(column, row, greyValue(share, 64));
        }
    }
    return image;
}

void paintNames(QPainter &painter, const QRectF &map, const QStringList &names, int every,
                double room)
{
    const QFontMetricsF metrics(painter.font());
    const double spacing = map.width() / names.size();
    for (int column = 0; column < names.size(); column += every) {
        const QString name = metrics.elidedText(names[column], Qt::ElideMiddle, room);
        painter.save();
        painter.translate(map.left() + (column + 0.5) * spacing +
                              (metrics.ascent() - metrics.descent()) / 2,
                          map.bottom() + gap + metrics.horizontalAdvance(name));
        painter.rotate(-90);
        painter.drawText(QPointF(0, 0), name);
        painter.restore();
    }
}

} // namespace

void paintDesign(QPainter &painter, const QRectF &area, const DesignPicture &picture)
{
    painter.save();
    painter.fillRect(area, Qt::white);
    if (picture.columns.size() > 0) {
        const double spacing = (area.width() - 2 * gap) / double(picture.names.size());
        const LabelFit fit = fitLabels(spacing);
        painter.setFont(labelFont(painter, fit.fontSize));
        const double room =
            std::min(widestLabel(painter.font(), picture.names, fit.every) + 1, area.height() / 3);
        const QRectF map(area.left() + gap, area.top() + gap, area.width() - 2 * gap,
                         std::max(1.0, area.height() - room - 3 * gap));
        painter.setRenderHint(QPainter::SmoothPixmapTransform, false);
        painter.drawImage(map, cells(reduced(picture.columns, pixelsOf(painter, map).height(),
                                             picture.columns.cols())));
        painter.setPen(Qt::black);
        painter.drawRect(map);
        paintNames(painter, map, picture.names, fit.every, room);
    }
    painter.restore();
}

} // namespace corvane
