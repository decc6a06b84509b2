// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QPainter>
#include <QSize>
#include <functional>

namespace corvane
{

/// A picture of a page, or in a file of its own.
struct PagePicture {
    QByteArray png;
    QSize size; ///< in pixels of the page
};

/// Paints on white in the page's own font, with `scale` pixels of the picture for one of the page.
/// Needs a QGuiApplication.
PagePicture paintedPicture(const QSize &size, double scale,
                           const std::function<void(QPainter &, const QRectF &)> &paint);

} // namespace corvane
