// SPDX-License-Identifier: GPL-3.0-or-later
#include "plots/path_label.h"

#include <QPainter>
#include <QStyle>

void PathLabel::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const QRect area = contentsRect();
    const QString shown = fontMetrics().elidedText(text(), Qt::ElideMiddle, area.width());
    const Qt::Alignment place = QStyle::visualAlignment(layoutDirection(), alignment());
    style()->drawItemText(&painter, area, int(place), palette(), isEnabled(), shown,
                          foregroundRole());
}
