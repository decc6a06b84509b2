// SPDX-License-Identifier: GPL-3.0-or-later
#include "plots/color_map.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace
{

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float nan = std::numeric_limits<float>::quiet_NaN();

TEST(ColorRamp, is_a_trapezoid)
{
    struct Row {
        float t;
        float ramp;
    };
    const float below = std::nextafterf(-0.75f, -1.0f);
    const float above = std::nextafterf(-0.75f, 0.0f);
    const Row rows[] = {
        {-infinity, 0.0f},
        {-2.0f, 0.0f},
        {below, 0.0f},
        {-0.75f, 0.0f},
        {above, 2.0f * (above + 0.75f)},
        {-0.5f, 0.5f},
        {-0.3f, 2.0f * (-0.3f + 0.75f)},
        {-0.25f, 1.0f},
        {std::nextafterf(-0.25f, 0.0f), 1.0f},
        {0.0f, 1.0f},
        {0.25f, 1.0f},
        {std::nextafterf(0.25f, 1.0f), 1.0f - 2.0f * (std::nextafterf(0.25f, 1.0f) - 0.25f)},
        {0.5f, 0.5f},
        {0.75f, 0.0f},
        {std::nextafterf(0.75f, 1.0f), 0.0f},
        {1.0f, 0.0f},
        {infinity, 0.0f},
        {nan, 0.0f},
    };
    for (const Row &row : rows)
        EXPECT_EQ(colorRamp(row.t), row.ramp) << row.t;
}

struct Anchor {
    double value;
    double red;
    double green;
    double blue;
};

void expectColor(const Anchor &anchor)
{
    constexpr double storage = 0.5 / 65535; // a QColor keeps 16 bits per channel
    const QColor color = valueToColor(anchor.value);
    EXPECT_NEAR(color.redF(), anchor.red, storage) << anchor.value;
    EXPECT_NEAR(color.greenF(), anchor.green, storage) << anchor.value;
    EXPECT_NEAR(color.blueF(), anchor.blue, storage) << anchor.value;
    EXPECT_EQ(color.alphaF(), 1.0) << anchor.value;
    EXPECT_EQ(color.spec(), QColor::Rgb) << anchor.value;
}

TEST(ValueToColor, meets_its_anchors)
{
    const Anchor anchors[] = {
        {-1.0, 0, 0, 0.5}, {-0.75, 0, 0, 1},   {-0.5, 0, 0.5, 1},
        {-0.25, 0, 1, 1},  {0.0, 0.5, 1, 0.5}, {0.25, 1, 1, 0},
        {0.5, 1, 0.5, 0},  {0.75, 1, 0, 0},    {1.0, 0.5, 0, 0},
    };
    for (const Anchor &anchor : anchors)
        expectColor(anchor);
}

TEST(ValueToColor, is_linear_between_its_anchors)
{
    const Anchor between[] = {
        {-1.125, 0, 0, 0.25},    {-0.875, 0, 0, 0.75},   {-0.625, 0, 0.25, 1}, {-0.375, 0, 0.75, 1},
        {-0.125, 0.25, 1, 0.75}, {0.125, 0.75, 1, 0.25}, {0.375, 1, 0.75, 0},  {0.625, 1, 0.25, 0},
        {0.875, 0.75, 0, 0},     {1.125, 0.25, 0, 0},    {0.1, 0.7, 1, 0.3},
    };
    for (const Anchor &anchor : between)
        expectColor(anchor);
}

TEST(ValueToColor, is_black_from_one_and_a_quarter_on_and_for_what_is_no_number)
{
    for (const double value :
         {-1.25, 1.25, -1.3, 1.3, -1e30, 1e30, -double(infinity), double(infinity), double(nan)})
        expectColor({value, 0, 0, 0});
}

} // namespace
