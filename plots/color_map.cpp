// SPDX-License-Identifier: GPL-3.0-or-later
#include "plots/color_map.h"

float colorRamp(float t)
{
    if (t <= -0.75f)
        return 0.0f;
    if (t <= -0.25f)
        return 2.0f * (t + 0.75f);
    if (t <= 0.25f)
        return 1.0f;
    if (t <= 0.75f)
        return 1.0f - 2.0f * (t - 0.25f);
    return 0.0f;
}

QColor valueToColor(double value)
{
    QColor color;
    color.setRedF(double(colorRamp(float(value - 0.5))));
    color.setGreenF(double(colorRamp(float(value))));
    color.setBlueF(double(colorRamp(float(value + 0.5))));
    color.setAlphaF(1.0);
    return color;
}
