// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/painting/page_picture.h"

#include <QBuffer>
#include <QHash>
#include <QImage>
#include <new>

namespace corvane
{

namespace
{

/// The same picture with a table of its colours, when they are few: its file is smaller.
QImage withFewColours(const QImage &image)
{
    QHash<QRgb, uchar> places;
    QVector<QRgb> colours;
    QImage small(image.size(), QImage::Format_Indexed8);
    for (int y = 0; y < image.height(); ++y) {
        const auto *from = reinterpret_cast<const QRgb *>(image.constScanLine(y));
        uchar *to = small.scanLine(y);
        for (int x = 0; x < image.width(); ++x) {
            auto place = places.constFind(from[x]);
            if (place == places.constEnd()) {
                if (colours.size() == 256)
                    return image;
                place = places.insert(from[x], uchar(colours.size()));
                colours += from[x];
            }
            to[x] = *place;
        }
    }
    small.setColorTable(colours);
    return small;
}

} // namespace

PagePicture paintedPicture(const QSize &size, double scale,
                           const std::function<void(QPainter &, const QRectF &)> &paint)
{
    QImage image(size * scale, QImage::Format_RGB32);
    if (image.isNull())
        throw std::bad_alloc();
    image.fill(Qt::white);
    QPainter painter(&image);
    QFont font(QStringLiteral("Liberation Sans"));
    font.setStyleHint(QFont::SansSerif);
    painter.setFont(font);
    painter.scale(scale, scale);
    paint(painter, QRectF(QPointF(0, 0), QSizeF(size)));
    painter.end();
    QBuffer png;
    if (!png.open(QIODevice::WriteOnly) || !withFewColours(image).save(&png, "PNG"))
        throw std::bad_alloc();
    return {png.data(), size};
}

} // namespace corvane
