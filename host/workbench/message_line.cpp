// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/workbench/message_line.h"

#include "plots/plain_text.h"

#include <QPainter>

namespace corvane
{

namespace
{

QFont smaller(QFont font)
{
    font.setPointSizeF(font.pointSizeF() * 0.9);
    return font;
}

} // namespace

QColor faultColour(const QPalette &palette)
{
    return palette.color(QPalette::Window).lightness() > 127 ? QColor(170, 20, 20)
                                                             : QColor(255, 140, 130);
}

MessageLine::MessageLine(QWidget *parent) : QWidget(parent)
{
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
}

void MessageLine::show(const QString &text, bool isFault)
{
    m_text = text;
    m_isFault = isFault;
    setAccessibleName(text);
    setToolTip(text.isEmpty() ? QString() : asToolTip(text));
    update();
}

QSize MessageLine::sizeHint() const
{
    return {100, QFontMetrics(smaller(font())).height()};
}

QSize MessageLine::minimumSizeHint() const
{
    return {20, sizeHint().height()};
}

void MessageLine::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setFont(smaller(font()));
    QColor quiet = palette().color(QPalette::WindowText);
    quiet.setAlpha(180);
    painter.setPen(m_isFault ? faultColour(palette()) : quiet);
    painter.drawText(rect().adjusted(3, 0, -3, 0), Qt::AlignVCenter,
                     painter.fontMetrics().elidedText(m_text, Qt::ElideRight, width() - 6));
}

} // namespace corvane
