// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/painting/picture_colours.h"

namespace corvane
{

QColor paperOf(const QPainter &painter)
{
    return painter.background().color();
}

bool isDark(const QColor &paper)
{
    return qGray(paper.rgb()) < 128;
}

QColor inkOf(const QPainter &painter)
{
    return isDark(paperOf(painter)) ? QColor(232, 232, 232) : QColor(Qt::black);
}

QColor faintOf(const QPainter &painter)
{
    return isDark(paperOf(painter)) ? QColor(74, 76, 80) : QColor(225, 225, 225);
}

QColor leftOutColour(const QPainter &painter)
{
    return isDark(paperOf(painter)) ? QColor(98, 58, 44) : QColor(246, 199, 178);
}

QColor darkPaper()
{
    return {27, 28, 31};
}

} // namespace corvane
