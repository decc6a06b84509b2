// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QPainter>
#include <vector>

/// @file
/// The volumes of a run from left to right, at the same places in every picture of the same width,
/// so that pictures below each other can be compared.

namespace corvane
{

/// Room for the numbers and names at the left of the volumes, and at their right.
inline constexpr double axisLeft = 120;
inline constexpr double axisRight = 16;
/// Height of the line of text above a picture of volumes, and of the numbers below.
inline constexpr double axisTitle = 24;
inline constexpr double axisNumbers = 22;

/// Where the volumes stand inside a picture's area: between its title and its numbers.
QRectF volumeArea(const QRectF &area);

/// The left edge of a volume.
double volumePlace(const QRectF &plot, int volume, int volumes);

/// The bands of the volumes that were left out.
void paintLeftOut(QPainter &painter, const QRectF &plot, const std::vector<bool> &leftOut);

/// Title at the top left of the area, numbers of volumes below the plot.
void paintVolumeAxis(QPainter &painter, const QRectF &area, const QString &title, int volumes);

/// A step of 1, 2 or 5 times a power of ten that divides the range into at most `most` parts.
double roundStep(double range, int most);

} // namespace corvane
