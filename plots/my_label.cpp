// SPDX-License-Identifier: GPL-3.0-or-later
#include "plots/my_label.h"

MyLabel::MyLabel(QWidget *parent) : QLabel(parent)
{
    setAttribute(Qt::WA_Hover);
    setTextFormat(Qt::PlainText);
}

MyLabel::~MyLabel() = default;

void MyLabel::setClickable(bool on)
{
    clickable = on;
}

void MyLabel::mousePressEvent(QMouseEvent *)
{
    if (clickable)
        emit clicked();
}

void MyLabel::enterEvent(QEvent *event)
{
    if (clickable && !hovering) {
        setCursor(Qt::PointingHandCursor);
        hovering = true;
        emit hoverLabel(true);
    }
    QLabel::enterEvent(event);
}

void MyLabel::leaveEvent(QEvent *event)
{
    if (clickable && hovering) {
        unsetCursor();
        hovering = false;
        emit hoverLabel(false);
    }
    QLabel::leaveEvent(event);
}
