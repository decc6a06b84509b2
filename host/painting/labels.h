// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QPainter>
#include <QStringList>

/// @file
/// Names beside nodes, however many there are.

namespace corvane
{

/// How names fit beside nodes that stand `spacing` apart.
struct LabelFit {
    int fontSize = 0; ///< pixels
    int every = 1;    ///< each how-manieth node has its name
};

/// Names as large as fit, from 7 to 14 pixels; where there is less room, every second, third ..
/// node has one, so that no two overlap.
LabelFit fitLabels(double spacing);

/// The painter's font at that size.
QFont labelFont(const QPainter &painter, int pixels);

/// The width of the widest name that is shown.
double widestLabel(const QFont &font, const QStringList &names, int every);

/// What is drawn, in as many lines as it takes; a long text in smaller letters, down to 7 pixels.
void paintFoot(QPainter &painter, const QRectF &area, const QString &text);

/// A title, centred in the area.
void paintTitle(QPainter &painter, const QRectF &area, const QString &text);

/// The scale of colours with its numbers, from -limit on the left to limit on the right.
void paintScale(QPainter &painter, const QRectF &area, double limit);

} // namespace corvane
