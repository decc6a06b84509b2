// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>

/// One trapezoid of the colour map: 0 up to -0.75, rising to 1 at -0.25, 1 up to 0.25, falling to 0
/// at 0.75 and 0 beyond. NaN gives 0.
float colorRamp(float t);

/// The one colour map of the plots: a raw matrix value to an opaque colour, from dark blue at -1
/// over green at 0 to dark red at 1. Red, green and blue are the same ramp, half a unit apart.
/// Values from 1.25 on, from -1.25 down, and NaN give black.
QColor valueToColor(double value);
