// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/workbench/window_buttons.h"

#include <QApplication>
#include <QIconEngine>
#include <QPainter>
#include <QStyleOption>

namespace corvane
{

namespace
{

enum class Mark { Close, Float };

void paintMark(QPainter &painter, Mark mark, const QRectF &rect, const QColor &colour)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const double side = std::min(rect.width(), rect.height());
    QRectF square(0, 0, 0.5 * side, 0.5 * side);
    square.moveCenter(rect.center());
    painter.setPen(QPen(colour, std::max(1.0, 0.1 * side), Qt::SolidLine, Qt::RoundCap));
    if (mark == Mark::Close) {
        painter.drawLine(square.topLeft(), square.bottomRight());
        painter.drawLine(square.bottomLeft(), square.topRight());
    } else {
        painter.drawRect(square);
    }
    painter.restore();
}

/// Looks for the colour when it paints, so that it follows another palette.
class MarkIcon : public QIconEngine
{
public:
    explicit MarkIcon(Mark mark) : m_mark(mark) {}

    void paint(QPainter *painter, const QRect &rect, QIcon::Mode, QIcon::State) override
    {
        paintMark(*painter, m_mark, rect, QApplication::palette().color(QPalette::WindowText));
    }
    QPixmap pixmap(const QSize &size, QIcon::Mode mode, QIcon::State state) override
    {
        QPixmap picture(size);
        picture.fill(Qt::transparent);
        QPainter painter(&picture);
        paint(&painter, QRect(QPoint(0, 0), size), mode, state);
        return picture;
    }
    QIconEngine *clone() const override { return new MarkIcon(m_mark); }

private:
    Mark m_mark;
};

} // namespace

WindowButtonStyle::WindowButtonStyle() : QProxyStyle(QApplication::style()->objectName()) {}

void WindowButtonStyle::drawPrimitive(PrimitiveElement element, const QStyleOption *option,
                                      QPainter *painter, const QWidget *widget) const
{
    if (element != PE_IndicatorTabClose) {
        QProxyStyle::drawPrimitive(element, option, painter, widget);
        return;
    }
    if (option->state & State_MouseOver) {
        QColor ground = option->palette.color(QPalette::WindowText);
        ground.setAlpha(60);
        painter->fillRect(option->rect, ground);
    }
    paintMark(*painter, Mark::Close, option->rect, option->palette.color(QPalette::WindowText));
}

QIcon WindowButtonStyle::standardIcon(StandardPixmap icon, const QStyleOption *option,
                                      const QWidget *widget) const
{
    if (icon == SP_TitleBarCloseButton)
        return QIcon(new MarkIcon(Mark::Close));
    if (icon == SP_TitleBarNormalButton)
        return QIcon(new MarkIcon(Mark::Float));
    return QProxyStyle::standardIcon(icon, option, widget);
}

} // namespace corvane
