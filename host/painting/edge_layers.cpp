// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/painting/edge_layers.h"

#include <QImage>
#include <array>
#include <future>

namespace corvane
{

namespace
{

/// Fewer are painted sooner than layers are put together.
constexpr std::size_t worthLayers = 600;
constexpr std::size_t layers = 4;

bool hasPixels(const QPaintDevice &device)
{
    return device.devType() == QInternal::Image || device.devType() == QInternal::Pixmap;
}

} // namespace

void paintInLayers(QPainter &painter, const QRectF &area, std::size_t count,
                   const std::function<void(QPainter &, std::size_t)> &paint)
{
    if (count < worthLayers || !hasPixels(*painter.device())) {
        for (std::size_t n = 0; n < count; ++n)
            paint(painter, n);
        return;
    }
    const QTransform toDevice = painter.deviceTransform();
    const double ratio = painter.device()->devicePixelRatioF();
    const QSize size(int(painter.device()->width() * ratio),
                     int(painter.device()->height() * ratio));
    const QRect pixels =
        toDevice.mapRect(area).toAlignedRect().adjusted(-2, -2, 2, 2) & QRect(QPoint(0, 0), size);
    if (pixels.isEmpty())
        return;
    const QBrush paper = painter.background();
    std::array<std::future<QImage>, layers> works;
    for (std::size_t layer = 0; layer < layers; ++layer)
        // Where no thread is to be had it is painted in this one.
        works[layer] = std::async([&, layer] {
            QImage image(pixels.size(), QImage::Format_ARGB32_Premultiplied);
            image.fill(Qt::transparent);
            QPainter part(&image);
            part.setRenderHint(QPainter::Antialiasing);
            part.setBackground(paper);
            part.setTransform(toDevice * QTransform::fromTranslate(-pixels.x(), -pixels.y()));
            for (std::size_t n = count * layer / layers; n < count * (layer + 1) / layers; ++n)
                paint(part, n);
            return image;
        });
    painter.save();
    painter.setWorldTransform({});
    for (std::future<QImage> &work : works) {
        QImage image = work.get();
        image.setDevicePixelRatio(ratio);
        painter.drawImage(QPointF(pixels.topLeft()) / ratio, image);
    }
    painter.restore();
}

} // namespace corvane
