// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QPainter>

/// @file
/// Light and dark pictures: the painter's background is the paper, all else follows from it. That
/// of a new painter is white.

namespace corvane
{

QColor paperOf(const QPainter &painter);
bool isDark(const QColor &paper);
/// What texts and frames are drawn with.
QColor inkOf(const QPainter &painter);
/// Lines of a grid, outlines.
QColor faintOf(const QPainter &painter);
/// Bands of volumes that were left out.
QColor leftOutColour(const QPainter &painter);

/// The colours of a dark picture's paper.
QColor darkPaper();

} // namespace corvane
