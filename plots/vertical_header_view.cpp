// SPDX-License-Identifier: GPL-3.0-or-later
#include "plots/vertical_header_view.h"

#include <QPainter>

VerticalHeaderView::VerticalHeaderView(QWidget *parent) : QHeaderView(Qt::Horizontal, parent) {}

VerticalHeaderView::~VerticalHeaderView() = default;

QSize VerticalHeaderView::sizeHint() const
{
    return QHeaderView::sizeHint().transposed();
}

QSize VerticalHeaderView::minimumSizeHint() const
{
    return QHeaderView::minimumSizeHint().transposed();
}

void VerticalHeaderView::paintSection(QPainter *painter, const QRect &rect, int logicalIndex) const
{
    painter->save();
    painter->translate(rect.x() + rect.width(), rect.y());
    painter->rotate(90);
    QHeaderView::paintSection(painter, QRect(0, 0, rect.height(), rect.width()), logicalIndex);
    painter->restore();
}
