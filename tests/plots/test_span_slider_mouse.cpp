// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/plots/span_slider_fixture.h"

#include <QMouseEvent>
#include <QProxyStyle>
#include <QStyleFactory>
#include <QStyleOptionSlider>

namespace
{

constexpr auto lowerHandle = QxtSpanSlider::LowerHandle;
constexpr auto upperHandle = QxtSpanSlider::UpperHandle;

/// All ways in which a slider can lie.
class EveryLayout
    : public SpanSliderTest,
      public testing::WithParamInterface<std::tuple<Qt::Orientation, bool, Qt::LayoutDirection>>
{
protected:
    void SetUp() override
    {
        const auto [orientation, invertedAppearance, direction] = GetParam();
        slider.setOrientation(orientation);
        slider.setInvertedAppearance(invertedAppearance);
        slider.setLayoutDirection(direction);
    }
};

INSTANTIATE_TEST_SUITE_P(SpanSlider, EveryLayout,
                         testing::Combine(testing::Values(Qt::Horizontal, Qt::Vertical),
                                          testing::Bool(),
                                          testing::Values(Qt::LeftToRight, Qt::RightToLeft)));

TEST_P(EveryLayout, has_one_value_per_pixel)
{
    show(100, 300);
    QStyleOptionSlider option;
    for (QxtSpanSlider::SpanHandle handle : {lowerHandle, upperHandle}) {
        logic.initStyleOption(&option, handle);
        const QRect rect = slider.style()->subControlRect(QStyle::CC_Slider, &option,
                                                          QStyle::SC_SliderHandle, &slider);
        const int value = handle == lowerHandle ? 100 : 300;
        EXPECT_EQ(logic.pick(rect.center()), logic.pick(pointOf(value)));
    }
}

TEST_P(EveryLayout, drags_the_lower_handle)
{
    show(100, 300);
    pressAt(100);
    EXPECT_EQ(takeSignals(), QStringList({"down", "pressed 1"}));
    moveTo(150);
    EXPECT_EQ(takeSignals(), QStringList({"lowerPos 150", "lower 150", "span 150 300"}));
    moveTo(60);
    EXPECT_EQ(takeSignals(), QStringList({"lowerPos 60", "lower 60", "span 60 300"}));
    releaseAt(60);
    EXPECT_EQ(takeSignals(), QStringList({"up"}));
    EXPECT_EQ(state(), "60 300 | 60 300");
}

TEST_P(EveryLayout, drags_the_upper_handle)
{
    show(100, 300);
    pressAt(300);
    EXPECT_EQ(takeSignals(), QStringList({"down", "pressed 2"}));
    moveTo(250);
    EXPECT_EQ(takeSignals(), QStringList({"upperPos 250", "upper 250", "span 100 250"}));
    releaseAt(250);
    EXPECT_EQ(takeSignals(), QStringList({"up"}));
    EXPECT_EQ(state(), "100 250 | 100 250");
}

TEST_P(EveryLayout, drags_stop_at_the_ends_of_the_range)
{
    show(100, 300);
    pressAt(100);
    moveTo(-40);
    releaseAt(-40);
    pressAt(300);
    moveTo(540);
    releaseAt(540);
    EXPECT_EQ(state(), "0 500 | 0 500");
}

TEST_P(EveryLayout, a_handle_held_off_its_centre_does_not_jump)
{
    show(100, 300);
    const QPoint off = horizontal() ? QPoint(3, 2) : QPoint(2, 3);
    press(pointOf(100) + off);
    move(pointOf(110) + off);
    release(pointOf(110) + off);
    EXPECT_EQ(state(), "110 300 | 110 300");
}

TEST_P(EveryLayout, the_groove_does_nothing)
{
    show(100, 300);
    for (int value : {50, 200, 400}) {
        pressAt(value);
        EXPECT_FALSE(slider.isSliderDown());
        moveTo(value + 20);
        releaseAt(value + 20);
    }
    EXPECT_EQ(takeSignals(), QStringList());
    EXPECT_EQ(state(), "100 300 | 100 300");
}

TEST_P(EveryLayout, coincident_handles_part_downwards)
{
    show(200, 200);
    pressAt(200);
    EXPECT_EQ(takeSignals(), QStringList({"down", "pressed 2"}));
    moveTo(190);
    EXPECT_EQ(takeSignals(), QStringList({"lowerPos 190", "lower 190", "span 190 200"}));
    moveTo(180);
    releaseAt(180);
    EXPECT_EQ(state(), "180 200 | 180 200");
    EXPECT_EQ(logic.lastPressed, lowerHandle);
}

TEST_P(EveryLayout, coincident_handles_part_upwards)
{
    show(200, 200);
    pressAt(200);
    moveTo(210);
    EXPECT_EQ(takeSignals(),
              QStringList({"down", "pressed 2", "upperPos 210", "upper 210", "span 200 210"}));
    releaseAt(210);
    EXPECT_EQ(state(), "200 210 | 200 210");
    EXPECT_EQ(logic.lastPressed, upperHandle);
}

TEST_P(EveryLayout, coincident_handles_wait_for_the_first_real_movement)
{
    show(200, 200);
    pressAt(200);
    move(pointOf(200, 1)); // aside: no new value
    EXPECT_TRUE(logic.firstMovement);
    moveTo(190);
    EXPECT_FALSE(logic.firstMovement);
    releaseAt(190);
    EXPECT_EQ(state(), "190 200 | 190 200");
}

TEST_P(EveryLayout, coincident_handles_part_whether_they_may_cross_or_not)
{
    for (auto mode : {QxtSpanSlider::NoCrossing, QxtSpanSlider::NoOverlapping}) {
        slider.setHandleMovementMode(mode);
        show(200, 200);
        pressAt(200);
        moveTo(190);
        releaseAt(190);
        EXPECT_EQ(state(), "190 200 | 190 200") << mode;

        slider.setSpan(200, 200);
        pressAt(200);
        moveTo(210);
        releaseAt(210);
        EXPECT_EQ(state(), "200 210 | 200 210") << mode;
    }
}

TEST_P(EveryLayout, coincident_handles_part_both_ways_in_one_drag_without_tracking)
{
    slider.setTracking(false);
    show(200, 200);
    pressAt(200);
    moveTo(210);
    EXPECT_TRUE(logic.firstMovement); // the values still coincide
    moveTo(190);
    EXPECT_FALSE(logic.firstMovement);
    EXPECT_EQ(takeSignals(), QStringList({"down", "pressed 2", "upperPos 210", "lowerPos 190"}));
    EXPECT_EQ(state(), "200 200 | 190 210");
    releaseAt(190);
    EXPECT_EQ(takeSignals(),
              QStringList({"lower 190", "span 190 200", "upper 210", "span 190 210", "up"}));
    EXPECT_EQ(state(), "190 210 | 190 210");
}

TEST_P(EveryLayout, a_free_lower_handle_crosses_and_goes_on_as_the_upper_one)
{
    show(100, 300);
    pressAt(100);
    moveTo(290);
    takeSignals();
    moveTo(310);
    // The handle that was crossed gets the position that the crossing one had.
    EXPECT_EQ(takeSignals(), QStringList({"upperPos 310", "lower 290", "span 290 290", "upper 310",
                                          "span 290 310"}));
    EXPECT_EQ(logic.lastPressed, upperHandle);
    EXPECT_EQ(logic.mainControl, upperHandle);
    EXPECT_EQ(logic.upperPressed, QStyle::SC_SliderHandle);
    moveTo(350);
    EXPECT_EQ(takeSignals(), QStringList({"upperPos 350", "upper 350", "span 290 350"}));

    moveTo(250); // and back
    EXPECT_EQ(takeSignals(), QStringList({"lowerPos 250", "lower 250", "span 250 290", "upper 350",
                                          "span 250 350"}));
    releaseAt(250);
    EXPECT_EQ(state(), "250 350 | 250 350");
    EXPECT_EQ(logic.mainControl, lowerHandle);
}

TEST_P(EveryLayout, a_free_handle_that_crosses_step_by_step_leaves_the_other_where_it_was)
{
    show(298, 300);
    pressAt(300); // the upper handle lies over the lower one here
    moveTo(299);
    moveTo(298);
    moveTo(297);
    moveTo(296);
    releaseAt(296);
    EXPECT_EQ(state(), "296 298 | 296 298");
    EXPECT_EQ(logic.lastPressed, lowerHandle);
}

TEST_P(EveryLayout, handles_meet_without_crossing)
{
    slider.setHandleMovementMode(QxtSpanSlider::NoCrossing);
    show(100, 300);
    pressAt(100);
    moveTo(310);
    releaseAt(310);
    EXPECT_EQ(state(), "300 300 | 300 300");

    slider.setSpan(100, 300);
    pressAt(300);
    moveTo(50);
    releaseAt(50);
    EXPECT_EQ(state(), "100 100 | 100 100");
    EXPECT_EQ(logic.mainControl, lowerHandle);
}

TEST_P(EveryLayout, a_handle_that_met_the_other_one_comes_back_in_the_same_drag)
{
    slider.setHandleMovementMode(QxtSpanSlider::NoCrossing);
    show(100, 300);
    pressAt(100);
    moveTo(310);
    EXPECT_EQ(state(), "300 300 | 300 300");
    moveTo(290);
    releaseAt(290);
    EXPECT_EQ(state(), "290 300 | 290 300");
    EXPECT_EQ(logic.lastPressed, lowerHandle);
}

TEST_P(EveryLayout, handles_stay_one_apart_without_overlapping)
{
    slider.setHandleMovementMode(QxtSpanSlider::NoOverlapping);
    show(100, 300);
    pressAt(100);
    moveTo(310);
    releaseAt(310);
    EXPECT_EQ(state(), "299 300 | 299 300");

    slider.setSpan(100, 300);
    pressAt(300);
    moveTo(50);
    releaseAt(50);
    EXPECT_EQ(state(), "100 101 | 100 101");
}

TEST_P(EveryLayout, without_tracking_the_values_come_with_the_release)
{
    slider.setTracking(false);
    show(100, 300);
    pressAt(100);
    moveTo(120);
    moveTo(150);
    EXPECT_EQ(takeSignals(), QStringList({"down", "pressed 1", "lowerPos 120", "lowerPos 150"}));
    EXPECT_EQ(state(), "100 300 | 150 300");
    releaseAt(150);
    EXPECT_EQ(takeSignals(), QStringList({"lower 150", "span 150 300", "up"}));
    EXPECT_EQ(state(), "150 300 | 150 300");

    pressAt(300);
    moveTo(280);
    releaseAt(280);
    EXPECT_EQ(takeSignals(), QStringList({"down", "pressed 2", "upperPos 280", "upper 280",
                                          "span 150 280", "up"}));
}

/// Fusion with a limit to the distance between the mouse and a slider that it drags.
class ShortLeash : public QProxyStyle
{
public:
    explicit ShortLeash(int limit = 20)
        : QProxyStyle(QStyleFactory::create(QStringLiteral("Fusion"))), distance(limit)
    {
    }

    int pixelMetric(PixelMetric metric, const QStyleOption *option,
                    const QWidget *widget) const override
    {
        return metric == PM_MaximumDragDistance ? distance
                                                : QProxyStyle::pixelMetric(metric, option, widget);
    }

private:
    int distance;
};

TEST_P(EveryLayout, dragged_too_far_a_handle_goes_back_to_where_it_was_pressed)
{
    ShortLeash style;
    slider.setStyle(&style);
    show(100, 300);
    const int toEdge = thickness / 2;

    pressAt(100);
    move(pointOf(150, toEdge + 19)); // the last pixel inside
    EXPECT_EQ(state(), "150 300 | 150 300");
    move(pointOf(160, toEdge + 20));
    EXPECT_EQ(state(), "100 300 | 100 300");
    move(pointOf(160, -toEdge - 20));
    EXPECT_EQ(state(), "160 300 | 160 300");
    move(pointOf(170, -toEdge - 21));
    EXPECT_EQ(state(), "100 300 | 100 300");
    moveTo(-20); // before the slider's start
    EXPECT_EQ(state(), "0 300 | 0 300");
    moveTo(-40);
    EXPECT_EQ(state(), "100 300 | 100 300");
    moveTo(170);
    releaseAt(170);
    EXPECT_EQ(state(), "170 300 | 170 300");

    pressAt(300);
    move(pointOf(200, toEdge + 40));
    EXPECT_EQ(state(), "170 300 | 170 300");
    releaseAt(300);
    slider.setStyle(nullptr);
}

TEST_P(EveryLayout, dragged_too_far_a_handle_goes_back_to_its_value_and_not_to_a_waiting_position)
{
    ShortLeash style;
    slider.setStyle(&style);
    slider.setTracking(false);
    show(100, 300);
    const QPoint tooFar = pointOf(200, thickness / 2 + 40);
    slider.setLowerPosition(150);
    slider.setUpperPosition(250);
    pressAt(150);
    move(tooFar);
    EXPECT_EQ(state(), "100 300 | 100 250");
    release(tooFar);
    pressAt(250);
    move(tooFar);
    EXPECT_EQ(state(), "100 300 | 100 300");
    release(tooFar);
    slider.setStyle(nullptr);
}

TEST_P(EveryLayout, a_release_without_movement_leaves_the_other_handles_position_waiting)
{
    slider.setTracking(false);
    show(100, 300);
    slider.setUpperPosition(280);
    pressAt(100);
    releaseAt(100);
    EXPECT_EQ(takeSignals(), QStringList({"down", "pressed 1", "up"}));
    EXPECT_EQ(state(), "100 300 | 100 280");

    slider.setUpperPosition(300);
    slider.setLowerPosition(120);
    pressAt(300);
    releaseAt(300);
    EXPECT_EQ(takeSignals(), QStringList({"down", "pressed 2", "up"}));
    EXPECT_EQ(state(), "100 300 | 120 300");
}

TEST_P(EveryLayout, the_value_of_the_other_handle_is_the_limit_and_not_its_waiting_position)
{
    slider.setTracking(false);
    struct Row {
        QxtSpanSlider::HandleMovementMode mode;
        int lowerLimit; // of the lower handle, short of the upper value 300
        int upperLimit; // of the upper handle, beyond the lower value 100
    };
    for (const Row &row :
         {Row{QxtSpanSlider::NoCrossing, 300, 100}, Row{QxtSpanSlider::NoOverlapping, 299, 101}}) {
        slider.setHandleMovementMode(row.mode);
        show(100, 300);
        slider.setUpperPosition(200);
        pressAt(100);
        moveTo(250);
        EXPECT_EQ(state(), "100 300 | 250 200") << row.mode;
        moveTo(350);
        EXPECT_EQ(slider.lowerPosition(), row.lowerLimit) << row.mode;
        releaseAt(350);

        slider.setSpan(0, 0);
        slider.setSpan(100, 300);
        slider.setLowerPosition(200);
        pressAt(300);
        moveTo(150);
        EXPECT_EQ(state(), "100 300 | 200 150") << row.mode;
        moveTo(50);
        EXPECT_EQ(slider.upperPosition(), row.upperLimit) << row.mode;
        releaseAt(50);
    }
}

TEST_P(EveryLayout, a_free_handle_crosses_at_the_value_of_the_other_and_not_at_its_waiting_position)
{
    slider.setTracking(false);
    show(100, 300);
    slider.setUpperPosition(200);
    pressAt(100);
    moveTo(250);
    EXPECT_EQ(state(), "100 300 | 250 200");
    EXPECT_EQ(logic.lastPressed, lowerHandle);
    releaseAt(250);

    slider.setSpan(0, 0);
    slider.setSpan(100, 300);
    slider.setLowerPosition(200);
    pressAt(300);
    moveTo(150);
    EXPECT_EQ(state(), "100 300 | 200 150");
    EXPECT_EQ(logic.lastPressed, upperHandle);
    releaseAt(150);
}

TEST_P(EveryLayout, handles_coincide_by_their_values_and_not_by_their_waiting_positions)
{
    slider.setTracking(false);
    slider.setHandleMovementMode(QxtSpanSlider::NoCrossing);
    show(200, 200);
    slider.setLowerPosition(150);
    pressAt(200);
    moveTo(190); // below the common value: the lower handle goes on
    EXPECT_EQ(state(), "200 200 | 190 200");
    EXPECT_EQ(logic.lastPressed, lowerHandle);
    releaseAt(190);
    EXPECT_EQ(state(), "190 200 | 190 200");
}

using SpanSliderMouse = SpanSliderTest;

TEST_F(SpanSliderMouse, without_tracking_a_crossing_keeps_lower_below_upper)
{
    slider.setTracking(false);
    show(100, 300);
    pressAt(100);
    moveTo(200);
    moveTo(350);
    EXPECT_EQ(slider.lowerValue(), 100);
    EXPECT_EQ(slider.upperValue(), 300);
    EXPECT_EQ(slider.lowerPosition(), 200);
    EXPECT_EQ(slider.upperPosition(), 350);
    takeSignals();
    releaseAt(350);
    // The release commits the lower position first, against the value that stayed behind.
    EXPECT_EQ(takeSignals(), QStringList({"lower 100", "upper 200", "span 100 200", "up"}));
    EXPECT_EQ(state(), "100 200 | 100 200");
}

TEST_F(SpanSliderMouse, a_press_without_movement_changes_nothing)
{
    show(100, 300);
    pressAt(300);
    EXPECT_TRUE(slider.isSliderDown());
    releaseAt(300);
    EXPECT_FALSE(slider.isSliderDown());
    EXPECT_EQ(takeSignals(), QStringList({"down", "pressed 2", "up"}));
    EXPECT_EQ(logic.upperPressed, QStyle::SC_None);
    EXPECT_EQ(logic.lowerPressed, QStyle::SC_None);
}

TEST_F(SpanSliderMouse, any_button_drags)
{
    show(100, 300);
    press(pointOf(100), Qt::RightButton);
    moveTo(120);
    release(pointOf(120), Qt::RightButton);
    EXPECT_EQ(state(), "120 300 | 120 300");
}

TEST_F(SpanSliderMouse, a_second_button_does_not_press_and_its_release_ends_the_drag)
{
    show(100, 300);
    pressAt(100);
    moveTo(150);
    takeSignals();
    press(pointOf(150), Qt::RightButton);
    EXPECT_EQ(takeSignals(), QStringList());
    moveTo(160);
    EXPECT_EQ(takeSignals(), QStringList({"lowerPos 160", "lower 160", "span 160 300"}));
    release(pointOf(160), Qt::RightButton);
    EXPECT_EQ(takeSignals(), QStringList({"up"}));
    moveTo(200);
    releaseAt(200);
    EXPECT_EQ(takeSignals(), QStringList());
    EXPECT_EQ(state(), "160 300 | 160 300");
}

TEST_F(SpanSliderMouse, a_press_is_accepted_unless_a_button_is_held_or_the_range_is_empty)
{
    show(100, 300);
    const auto accepts = [this](Qt::MouseButton button, Qt::MouseButtons buttons) {
        QMouseEvent event(QEvent::MouseButtonPress, pointOf(200), button, buttons, Qt::NoModifier);
        QCoreApplication::sendEvent(&slider, &event);
        return event.isAccepted();
    };
    EXPECT_TRUE(accepts(Qt::LeftButton, Qt::LeftButton));
    EXPECT_FALSE(accepts(Qt::LeftButton, Qt::LeftButton | Qt::RightButton));
    slider.setRange(200, 200);
    EXPECT_FALSE(accepts(Qt::LeftButton, Qt::LeftButton));
}

TEST_F(SpanSliderMouse, a_release_is_left_to_the_base_class_which_knows_of_no_press)
{
    show(100, 300);
    pressAt(100);
    QMouseEvent event(QEvent::MouseButtonRelease, pointOf(100), Qt::LeftButton, Qt::NoButton,
                      Qt::NoModifier);
    QCoreApplication::sendEvent(&slider, &event);
    EXPECT_FALSE(event.isAccepted());
    EXPECT_FALSE(slider.isSliderDown());
}

TEST_F(SpanSliderMouse, a_move_is_accepted_only_with_a_pressed_handle)
{
    show(100, 300);
    const auto accepts = [this] {
        QMouseEvent event(QEvent::MouseMove, pointOf(100), Qt::NoButton, Qt::LeftButton,
                          Qt::NoModifier);
        QCoreApplication::sendEvent(&slider, &event);
        return event.isAccepted();
    };
    EXPECT_FALSE(accepts());
    pressAt(100);
    EXPECT_TRUE(accepts());
    releaseAt(100);
    EXPECT_FALSE(accepts());
}

TEST_F(SpanSliderMouse, an_empty_range_takes_no_press)
{
    slider.setRange(70, 70);
    show(70, 70);
    takeSignals();
    for (int x = 0; x < slider.width(); x += 5)
        QTest::mouseClick(slider.windowHandle(), Qt::LeftButton, {}, QPoint(x, thickness / 2));
    EXPECT_EQ(takeSignals(), QStringList());
    EXPECT_EQ(logic.firstMovement, false);
}

TEST_F(SpanSliderMouse, a_range_that_changes_during_a_drag_takes_the_span_with_it)
{
    show(100, 300);
    pressAt(300);
    moveTo(320);
    takeSignals();
    slider.setRange(0, 250);
    EXPECT_EQ(takeSignals(), QStringList({"upper 250", "span 100 250"}));
    moveTo(300); // half a value per pixel now
    releaseAt(300);
    EXPECT_EQ(state(), "100 150 | 100 150");
}

TEST_F(SpanSliderMouse, a_limit_of_zero_ends_at_the_edge)
{
    ShortLeash style(0);
    slider.setStyle(&style);
    show(100, 300);
    const QRect inside = slider.rect();
    pressAt(100);
    for (const int bottom : {inside.bottom(), inside.top()}) {
        move(QPoint(pointOf(150).x(), bottom)); // the last pixel inside
        EXPECT_EQ(state(), "150 300 | 150 300") << bottom;
        move(QPoint(pointOf(150).x(), bottom == inside.top() ? -1 : bottom + 1));
        EXPECT_EQ(state(), "100 300 | 100 300") << bottom;
    }
    move(QPoint(-1, pointOf(0).y()));
    EXPECT_EQ(state(), "100 300 | 100 300");
    move(QPoint(0, pointOf(0).y()));
    EXPECT_EQ(state(), "0 300 | 0 300");
    release(QPoint(0, pointOf(0).y()));
    slider.setStyle(nullptr);
}

TEST_F(SpanSliderMouse, without_a_limit_no_distance_is_too_far)
{
    ASSERT_LT(slider.style()->pixelMetric(QStyle::PM_MaximumDragDistance), 0);
    show(100, 300);
    pressAt(100);
    move(pointOf(150, 600));
    release(pointOf(150, 600));
    EXPECT_EQ(state(), "150 300 | 150 300");
}

} // namespace
