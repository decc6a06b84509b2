// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QStringList>

namespace corvane
{

/// The colour of a value on a scale from -limit (blue) over 0 (white) to limit (red), which people
/// with any vision of colours tell apart: the scheme RdBu of Brewer and Harrower 2003,
/// doi:10.1179/000870403235002042. Values beyond are those of the limit, no value is grey. On dark
/// paper the middle is dark and the ends are the lighter ones of the same hues.
QColor divergingColour(double value, double limit, bool onDark = false);

/// Scales from dark to light, for values that have no middle.
enum class ColourMap { Hot, Viridis, Grey };

/// Their names for users, in the order of ColourMap.
QStringList colourMapNames();

/// The colour at a share of a scale, 0 to 1; beyond it that of its end.
QColor sequentialColour(ColourMap map, double share);

} // namespace corvane
