// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QPainter>
#include <QSizeF>
#include <functional>

namespace corvane
{

/// A picture as SVG 1.1, its texts as text: `size` in the painter's units, shown that many
/// millimetres wide. Paths, straight gradients, images, rectangular clips; the same calls of the
/// painter give the same bytes. (Written here, since the SVG library is no part of Qt's base, which
/// is all that some systems have of it.)
QByteArray svgPicture(const QSizeF &size, double millimetres,
                      const std::function<void(QPainter &)> &paint);

} // namespace corvane
