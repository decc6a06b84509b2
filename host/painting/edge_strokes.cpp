// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/painting/edge_strokes.h"

#include "host/painting/colour_map.h"

#include <algorithm>
#include <cmath>

namespace corvane
{

QPen edgePen(double value, double limit, bool onDark)
{
    const double strength = limit > 0 ? std::min(std::abs(value) / limit, 1.0) : 0;
    QColor colour = divergingColour(std::copysign(0.4 + 0.6 * strength, value), 1, onDark);
    colour.setAlphaF(0.15 + 0.85 * strength);
    return {colour, 0.5 + 3 * strength};
}

} // namespace corvane
