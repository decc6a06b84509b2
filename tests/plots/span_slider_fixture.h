// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plots/span_slider.h"
#include "plots/span_slider_private.h"
#include "tests/support/qt_printers.h"

#include <QPoint>
#include <QStringList>
#include <QTest>

#include <gtest/gtest.h>

/// A shown slider of range 0 to 500, one value per pixel, with a record of its signals.
class SpanSliderTest : public testing::Test
{
protected:
    static constexpr int maximum = 500;
    static constexpr int thickness = 40; // across the slider

    SpanSliderTest()
    {
        slider.setRange(0, maximum);
        slider.setOrientation(Qt::Horizontal);

        const auto note = [this](const QString &line) { signalLog += line; };
        const auto noteValue = [note](const char *name) {
            return [note, name](int value) { note(QStringLiteral("%1 %2").arg(name).arg(value)); };
        };
        QObject::connect(&slider, &QAbstractSlider::sliderPressed, &slider,
                         [note] { note(QStringLiteral("down")); });
        QObject::connect(&slider, &QAbstractSlider::sliderReleased, &slider,
                         [note] { note(QStringLiteral("up")); });
        QObject::connect(&slider, &QxtSpanSlider::sliderPressed, &slider,
                         [note](QxtSpanSlider::SpanHandle handle) {
                             note(QStringLiteral("pressed %1").arg(int(handle)));
                         });
        QObject::connect(&slider, &QxtSpanSlider::spanChanged, &slider,
                         [note](int lower, int upper) {
                             note(QStringLiteral("span %1 %2").arg(lower).arg(upper));
                         });
        QObject::connect(&slider, &QxtSpanSlider::lowerValueChanged, &slider, noteValue("lower"));
        QObject::connect(&slider, &QxtSpanSlider::upperValueChanged, &slider, noteValue("upper"));
        QObject::connect(&slider, &QxtSpanSlider::lowerPositionChanged, &slider,
                         noteValue("lowerPos"));
        QObject::connect(&slider, &QxtSpanSlider::upperPositionChanged, &slider,
                         noteValue("upperPos"));
    }

    /// Shows the slider with the given span and forgets the signals so far.
    void show(int lower, int upper)
    {
        const int length = maximum + handleLength();
        slider.resize(horizontal() ? QSize(length, thickness) : QSize(thickness, length));
        slider.show();
        slider.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&slider));
        slider.setFocus();
        slider.setSpan(lower, upper);
        signalLog.clear();
    }

    bool horizontal() const { return slider.orientation() == Qt::Horizontal; }

    int handleLength() const
    {
        return slider.style()->pixelMetric(QStyle::PM_SliderLength, nullptr, &slider);
    }

    /// Whether values grow to the left or to the bottom.
    bool runsBackwards() const
    {
        if (horizontal())
            return slider.invertedAppearance() != (slider.layoutDirection() == Qt::RightToLeft);
        return !slider.invertedAppearance();
    }

    /// Where the centre of a handle with that value stands, moved off the slider's axis by `aside`.
    QPoint pointOf(int value, int aside = 0) const
    {
        const int along = (runsBackwards() ? maximum - value : value) + handleLength() / 2;
        const int across = thickness / 2 + aside;
        return horizontal() ? QPoint(along, across) : QPoint(across, along);
    }

    void press(QPoint at, Qt::MouseButton button = Qt::LeftButton)
    {
        QTest::mousePress(slider.windowHandle(), button, {}, at);
    }
    void move(QPoint to) { QTest::mouseMove(slider.windowHandle(), to); }
    void release(QPoint at, Qt::MouseButton button = Qt::LeftButton)
    {
        QTest::mouseRelease(slider.windowHandle(), button, {}, at);
    }
    void pressAt(int value) { press(pointOf(value)); }
    void moveTo(int value) { move(pointOf(value)); }
    void releaseAt(int value) { release(pointOf(value)); }
    void key(Qt::Key which) { QTest::keyClick(slider.windowHandle(), which); }

    /// The signals since the last call.
    QStringList takeSignals() { return std::exchange(signalLog, {}); }

    /// Values and positions as "lower upper | lowerPosition upperPosition".
    QString state() const
    {
        return QStringLiteral("%1 %2 | %3 %4")
            .arg(slider.lowerValue())
            .arg(slider.upperValue())
            .arg(slider.lowerPosition())
            .arg(slider.upperPosition());
    }

    QStringList signalLog;
    QxtSpanSlider slider;
    QxtSpanSliderPrivate &logic = QxtSpanSliderPrivate::of(slider);
};
