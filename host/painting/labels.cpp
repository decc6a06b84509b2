// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/painting/labels.h"

#include "host/painting/colour_map.h"
#include "host/painting/picture_colours.h"

#include <QFontMetricsF>
#include <algorithm>
#include <cmath>

namespace corvane
{

namespace
{

constexpr int smallest = 7;
constexpr int largest = 14;
/// Height of a line in sizes of its font.
constexpr double lineHeight = 1.15;

} // namespace

LabelFit fitLabels(double spacing)
{
    LabelFit fit;
    fit.every = std::max(1, int(std::ceil(smallest * lineHeight / spacing)));
    fit.fontSize = std::clamp(int(spacing * fit.every / lineHeight), smallest, largest);
    return fit;
}

QFont labelFont(const QPainter &painter, int pixels)
{
    QFont font = painter.font();
    font.setPixelSize(pixels);
    return font;
}

double widestLabel(const QFont &font, const QStringList &names, int every)
{
    const QFontMetricsF metrics(font);
    double widest = 0;
    for (int node = 0; node < names.size(); node += every)
        widest = std::max(widest, metrics.horizontalAdvance(names[node]));
    return widest;
}

void paintFoot(QPainter &painter, const QRectF &area, const QString &text)
{
    painter.save();
    painter.setPen(inkOf(painter));
    // A number keeps its sign of percent.
    QString lines = text;
    lines.replace(QLatin1String(" %"), QString(QChar(QChar::Nbsp)) + QLatin1Char('%'));
    constexpr int flags = Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap;
    // A long text is written smaller: all of it counts.
    int size = 12;
    while (size > smallest &&
           QFontMetricsF(labelFont(painter, size)).boundingRect(area, flags, lines).height() >
               area.height())
        --size;
    painter.setFont(labelFont(painter, size));
    painter.drawText(area, flags, lines);
    painter.restore();
}

void paintTitle(QPainter &painter, const QRectF &area, const QString &text)
{
    painter.save();
    // A long title is written smaller, down to the size of other texts, and then cut.
    int size = int(area.height() * 0.6);
    while (size > 12 &&
           QFontMetricsF(labelFont(painter, size)).horizontalAdvance(text) > area.width())
        --size;
    painter.setFont(labelFont(painter, size));
    painter.setPen(inkOf(painter));
    painter.drawText(area, Qt::AlignCenter,
                     QFontMetricsF(painter.font()).elidedText(text, Qt::ElideMiddle, area.width()));
    painter.restore();
}

void paintScale(QPainter &painter, const QRectF &area, double limit)
{
    painter.save();
    const QRectF bar(area.left(), area.top(), area.width(), area.height() / 2);
    QLinearGradient gradient(bar.topLeft(), bar.topRight());
    for (int stop = 0; stop <= 16; ++stop)
        gradient.setColorAt(stop / 16.0, divergingColour(limit * (stop / 8.0 - 1), limit,
                                                         isDark(paperOf(painter))));
    painter.fillRect(bar, gradient);
    painter.setPen(inkOf(painter));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(bar);
    painter.setFont(labelFont(painter, largest));
    const QRectF numbers(area.left(), bar.bottom() + 2, area.width(), area.height() / 2);
    painter.drawText(numbers, Qt::AlignLeft | Qt::AlignTop, QString::number(-limit, 'g', 3));
    painter.drawText(numbers, Qt::AlignHCenter | Qt::AlignTop, QStringLiteral("0"));
    painter.drawText(numbers, Qt::AlignRight | Qt::AlignTop, QString::number(limit, 'g', 3));
    painter.restore();
}

} // namespace corvane
