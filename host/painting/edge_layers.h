// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QPainter>
#include <functional>

namespace corvane
{

/// Paints things 0 to count - 1, the later above the earlier: `paint` gets a painter and which of
/// them. On an image or a pixmap many of them are painted on several threads, each a share on a
/// layer of its own, and the layers are put together in order. The layers are the same on every
/// machine, so that the picture is. `paint` draws no texts.
void paintInLayers(QPainter &painter, const QRectF &area, std::size_t count,
                   const std::function<void(QPainter &, std::size_t)> &paint);

} // namespace corvane
