// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/painting/group_bar.h"

#include "host/painting/category_colours.h"
#include "host/painting/picture_colours.h"

#include <QFontMetricsF>
#include <algorithm>
#include <limits>

namespace corvane
{

void paintGroupBar(QPainter &painter, const QRectF &bar, const std::vector<NodeGroup> &groups,
                   int nodes, double roomForNames)
{
    painter.save();
    painter.setPen(inkOf(painter));
    const QFontMetricsF metrics(painter.font());
    double free = -std::numeric_limits<double>::infinity();
    for (std::size_t n = 0; n < groups.size(); ++n) {
        const double top = bar.top() + bar.height() * groups[n].first / nodes;
        const double height = bar.height() * groups[n].count / nodes;
        painter.fillRect(QRectF(bar.left(), top, bar.width(), height), categoryColour(int(n)));
        const double line = metrics.height();
        const QRectF text(bar.left() - roomForNames, top + (height - line) / 2, roomForNames - 6,
                          line);
        if (text.top() < free)
            continue;
        free = text.bottom();
        painter.drawText(text, Qt::AlignRight | Qt::AlignVCenter,
                         metrics.elidedText(groups[n].name, Qt::ElideRight, text.width()));
    }
    painter.restore();
}

double widestGroup(const QFont &font, const std::vector<NodeGroup> &groups)
{
    const QFontMetricsF metrics(font);
    double widest = 0;
    for (const NodeGroup &group : groups)
        widest = std::max(widest, metrics.horizontalAdvance(group.name));
    return widest;
}

} // namespace corvane
