// SPDX-License-Identifier: GPL-3.0-or-later
#include "plots/span_slider.h"
#include "tests/gui_test.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QMouseEvent>

#include <gtest/gtest.h>

#include <array>
#include <random>

namespace
{

/// A slider that random operations work on: its interface, keys, and drags of the mouse.
class RandomSlider
{
public:
    explicit RandomSlider(unsigned seed) : random(seed)
    {
        slider.setOrientation(Qt::Horizontal);
        slider.resize(300, 300);
        slider.setRange(0, 1000);
        slider.setSpan(0, 1000);
    }

    void operate(bool withTrackingSwitch)
    {
        switch (pick(0, withTrackingSwitch ? 15 : 14)) {
        case 0:
            return slider.setLowerValue(nearRange());
        case 1:
            return slider.setUpperValue(nearRange());
        case 2:
            return slider.setSpan(nearRange(), nearRange());
        case 3:
            return slider.setLowerPosition(inRange());
        case 4:
            return slider.setUpperPosition(inRange());
        case 5: {
            const int end = pick(-100, 1000);
            return slider.setRange(end, end + pick(0, 1000));
        }
        case 6:
            return slider.setHandleMovementMode(
                static_cast<QxtSpanSlider::HandleMovementMode>(pick(0, 2)));
        case 7:
            return turn();
        case 8:
            return slider.setSingleStep(pick(1, 200));
        case 9:
        case 10:
            return key();
        case 11:
            return mouse(QEvent::MouseButtonPress, Qt::LeftButton);
        case 12:
        case 13:
            return mouse(QEvent::MouseMove, Qt::NoButton);
        case 14:
            return mouse(QEvent::MouseButtonRelease, Qt::LeftButton);
        default:
            return slider.setTracking(pick(0, 1) == 1);
        }
    }

    QxtSpanSlider slider;

private:
    int pick(int from, int to) { return std::uniform_int_distribution(from, to)(random); }
    int inRange() { return pick(slider.minimum(), slider.maximum()); }
    int nearRange() { return pick(slider.minimum() - 50, slider.maximum() + 50); }

    void turn()
    {
        slider.setOrientation(pick(0, 1) == 0 ? Qt::Horizontal : Qt::Vertical);
        slider.setInvertedAppearance(pick(0, 1) == 0);
        slider.setInvertedControls(pick(0, 1) == 0);
        slider.setLayoutDirection(pick(0, 1) == 0 ? Qt::LeftToRight : Qt::RightToLeft);
    }

    void key()
    {
        static constexpr std::array keys = {Qt::Key_Home,  Qt::Key_End, Qt::Key_Left,
                                            Qt::Key_Right, Qt::Key_Up,  Qt::Key_Down};
        QKeyEvent event(QEvent::KeyPress, keys[size_t(pick(0, int(keys.size()) - 1))],
                        Qt::NoModifier);
        QCoreApplication::sendEvent(&slider, &event);
    }

    void mouse(QEvent::Type type, Qt::MouseButton button)
    {
        // Presses on the slider's axis, or hardly any would hit a handle.
        QPoint at(pick(-20, 320), pick(-20, 320));
        if (type == QEvent::MouseButtonPress)
            at = slider.orientation() == Qt::Horizontal ? QPoint(at.x(), 150) : QPoint(150, at.y());
        const Qt::MouseButtons held =
            type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
        QMouseEvent event(type, at, button, held, Qt::NoModifier);
        QCoreApplication::sendEvent(&slider, &event);
        drags += type == QEvent::MouseMove && event.isAccepted();
    }

    std::mt19937 random;

public:
    int drags = 0; ///< mouse moves that moved a handle
};

constexpr int operations = 100'000;

void expectValuesInRange(const QxtSpanSlider &slider, int operation)
{
    ASSERT_LE(slider.minimum(), slider.lowerValue()) << "operation " << operation;
    ASSERT_LE(slider.lowerValue(), slider.upperValue()) << "operation " << operation;
    ASSERT_LE(slider.upperValue(), slider.maximum()) << "operation " << operation;
}

bool inRange(const QxtSpanSlider &slider, int position)
{
    return slider.minimum() <= position && position <= slider.maximum();
}

TEST(RandomSpanSlider, keeps_its_values_ordered_and_in_range)
{
    RandomSlider random(1);
    for (int i = 0; i < operations; ++i) {
        random.operate(true);
        expectValuesInRange(random.slider, i);
        if (testing::Test::HasFatalFailure())
            return;
    }
    EXPECT_GT(random.drags, 500);
}

TEST(RandomSpanSlider, keeps_positions_and_values_equal_with_tracking)
{
    RandomSlider random(2);
    const QxtSpanSlider &slider = random.slider;
    int strays = 0;
    bool stray = false; // a position was put beyond the range and stays there until it is moved
    for (int i = 0; i < operations; ++i) {
        random.operate(false);
        expectValuesInRange(slider, i);
        if (testing::Test::HasFatalFailure())
            return;
        if (!inRange(slider, slider.lowerPosition()) || !inRange(slider, slider.upperPosition())) {
            // Only handles that keep one apart at an end of the range are pushed out of it.
            stray = true;
            ++strays;
        } else if (slider.lowerPosition() == slider.lowerValue() &&
                   slider.upperPosition() == slider.upperValue()) {
            stray = false;
        } else {
            ASSERT_TRUE(stray) << "operation " << i;
        }
    }
    EXPECT_LT(strays, operations / 10);
    EXPECT_GT(random.drags, 500);
}

TEST(RandomSpanSlider, reports_every_change_of_its_span)
{
    RandomSlider random(3);
    QxtSpanSlider &slider = random.slider;
    int lower = slider.lowerValue();
    int upper = slider.upperValue();
    int lowerReported = lower;
    int upperReported = upper;
    QObject::connect(&slider, &QxtSpanSlider::spanChanged, &slider, [&](int l, int u) {
        lower = l;
        upper = u;
    });
    QObject::connect(&slider, &QxtSpanSlider::lowerValueChanged, &slider,
                     [&](int l) { lowerReported = l; });
    QObject::connect(&slider, &QxtSpanSlider::upperValueChanged, &slider,
                     [&](int u) { upperReported = u; });
    for (int i = 0; i < operations; ++i) {
        random.operate(false);
        ASSERT_EQ(lower, slider.lowerValue()) << "operation " << i;
        ASSERT_EQ(upper, slider.upperValue()) << "operation " << i;
        ASSERT_LE(lowerReported, upperReported) << "operation " << i;
    }
}

} // namespace
