// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/painting/colour_map.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace corvane
{

namespace
{

using Channels = std::array<double, 3>;

/// From -limit to limit, evenly spaced.
constexpr std::array<Channels, 9> lightStops{{{33, 102, 172},
                                              {67, 147, 195},
                                              {146, 197, 222},
                                              {209, 229, 240},
                                              {255, 255, 255},
                                              {253, 219, 199},
                                              {244, 165, 130},
                                              {214, 96, 77},
                                              {178, 24, 43}}};

constexpr std::array<Channels, 9> darkStops{{{146, 197, 222},
                                             {92, 168, 210},
                                             {52, 120, 180},
                                             {36, 66, 100},
                                             {27, 28, 31},
                                             {100, 34, 40},
                                             {178, 44, 52},
                                             {228, 118, 92},
                                             {249, 190, 158}}};

} // namespace

QColor divergingColour(double value, double limit, bool onDark)
{
    if (std::isnan(value))
        return onDark ? QColor(82, 82, 82) : QColor(200, 200, 200);
    const std::array<Channels, 9> &stops = onDark ? darkStops : lightStops;
    const double share = limit > 0 ? std::clamp(value / limit, -1.0, 1.0) : 0;
    const double place = (share + 1) / 2 * double(stops.size() - 1);
    const auto lower = std::min(std::size_t(place), stops.size() - 2);
    const double rest = place - double(lower);
    const auto channel = [&](std::size_t n) {
        return int(std::lround(stops[lower][n] + rest * (stops[lower + 1][n] - stops[lower][n])));
    };
    return {channel(0), channel(1), channel(2)};
}

} // namespace corvane
