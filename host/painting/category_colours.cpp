// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/painting/category_colours.h"

#include <cmath>
#include <iterator>

namespace corvane
{

QColor categoryColour(int number)
{
    constexpr QRgb first[] = {0xff0072b2, 0xffe69f00, 0xff009e73, 0xffd55e00,
                              0xffcc79a7, 0xff56b4e9, 0xff7a5230, 0xff8a8a00};
    if (number < int(std::size(first)))
        return QColor::fromRgb(first[number]);
    // Steps of the golden angle: no two neighbours are alike, however many there are.
    const double hue = std::fmod(number * 0.618033988749895, 1.0);
    return QColor::fromHsvF(hue, number % 2 == 0 ? 0.75 : 0.5, number % 3 == 0 ? 0.6 : 0.8);
}

} // namespace corvane
