// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSlider>
#include <QStyle>
#include <QStyleOptionSlider>

/// Where the handle of a horizontal slider is at a value, in its window.
inline QPoint sliderHandle(const QSlider &slider, int value)
{
    QStyleOptionSlider option;
    option.initFrom(&slider);
    option.minimum = slider.minimum();
    option.maximum = slider.maximum();
    option.sliderPosition = option.sliderValue = value;
    option.orientation = Qt::Horizontal;
    option.subControls = QStyle::SC_All;
    option.state |= QStyle::State_Horizontal;
    const QRect handle = slider.style()->subControlRect(QStyle::CC_Slider, &option,
                                                        QStyle::SC_SliderHandle, &slider);
    return slider.mapTo(slider.window(), handle.center());
}
