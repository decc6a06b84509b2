// SPDX-License-Identifier: GPL-3.0-or-later
#include "plots/my_graphics_simple_text_item.h"

#include <QCursor>

MyGraphicsSimpleTextItem::MyGraphicsSimpleTextItem(QGraphicsItem *parent)
    : QGraphicsTextItem(parent)
{
    setDefaultTextColor(Qt::black);
}

MyGraphicsSimpleTextItem::~MyGraphicsSimpleTextItem() = default;

void MyGraphicsSimpleTextItem::hoverEnterEvent(QGraphicsSceneHoverEvent *event)
{
    QGraphicsTextItem::hoverEnterEvent(event);
    if (hovered)
        return;
    hovered = true;
    setCursor(Qt::PointingHandCursor);
    emit hovering(true);
}

void MyGraphicsSimpleTextItem::hoverLeaveEvent(QGraphicsSceneHoverEvent *event)
{
    QGraphicsTextItem::hoverLeaveEvent(event);
    if (!hovered)
        return;
    hovered = false;
    unsetCursor();
    emit hovering(false);
}
