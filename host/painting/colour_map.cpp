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

/// The colour at a share, 0 to 1, of a scale of evenly spaced colours.
template <std::size_t count>
QColor colourOn(const std::array<Channels, count> &stops, double share)
{
    const double place = share * double(count - 1);
    const auto lower = std::min(std::size_t(place), count - 2);
    const double rest = place - double(lower);
    const auto channel = [&](std::size_t n) {
        return int(std::lround(stops[lower][n] + rest * (stops[lower + 1][n] - stops[lower][n])));
    };
    return {channel(0), channel(1), channel(2)};
}

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

/// Over red and yellow.
constexpr std::array<Channels, 4> hot{{{40, 0, 0}, {220, 30, 0}, {255, 190, 0}, {255, 255, 220}}};

/// Even to the eye, also in grey: that of van der Walt and Smith, in the public domain.
constexpr std::array<Channels, 9> viridis{{{68, 1, 84},
                                           {71, 44, 122},
                                           {59, 81, 139},
                                           {44, 113, 142},
                                           {33, 144, 141},
                                           {39, 173, 129},
                                           {92, 200, 99},
                                           {170, 220, 50},
                                           {253, 231, 37}}};

constexpr std::array<Channels, 2> grey{{{0, 0, 0}, {255, 255, 255}}};

} // namespace

QColor divergingColour(double value, double limit, bool onDark)
{
    if (std::isnan(value))
        return onDark ? QColor(82, 82, 82) : QColor(200, 200, 200);
    const double share = limit > 0 ? std::clamp(value / limit, -1.0, 1.0) : 0;
    return colourOn(onDark ? darkStops : lightStops, (share + 1) / 2);
}

QStringList colourMapNames()
{
    return {QStringLiteral("Hot"), QStringLiteral("Viridis"), QStringLiteral("Grey")};
}

QColor sequentialColour(ColourMap map, double share)
{
    const double bounded = std::isnan(share) ? 0 : std::clamp(share, 0.0, 1.0);
    switch (map) {
    case ColourMap::Hot:
        return colourOn(hot, bounded);
    case ColourMap::Viridis:
        return colourOn(viridis, bounded);
    case ColourMap::Grey:
        break;
    }
    return colourOn(grey, bounded);
}

} // namespace corvane
