// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/gui_test.h"
#include "tests/plots/span_slider_fixture.h"

#include <QKeyEvent>

#include <limits>

namespace
{

constexpr auto lowerHandle = QxtSpanSlider::LowerHandle;
constexpr auto upperHandle = QxtSpanSlider::UpperHandle;

/// One key on the span 200 to 300 with single steps of 7.
struct KeyCase {
    Qt::Orientation orientation;
    Qt::Key key;
    bool invertedAppearance;
    bool invertedControls;
    int mainLower[2]; ///< span afterwards when the lower handle is the main one
    int mainUpper[2]; ///< the same for the upper handle
};

const KeyCase keyCases[] = {
    // Along the slider: the main handle.
    {Qt::Horizontal, Qt::Key_Left, false, false, {193, 300}, {200, 293}},
    {Qt::Horizontal, Qt::Key_Left, true, false, {207, 300}, {200, 307}},
    {Qt::Horizontal, Qt::Key_Left, false, true, {193, 300}, {200, 293}},
    {Qt::Horizontal, Qt::Key_Right, false, false, {207, 300}, {200, 307}},
    {Qt::Horizontal, Qt::Key_Right, true, false, {193, 300}, {200, 293}},
    {Qt::Horizontal, Qt::Key_Right, false, true, {207, 300}, {200, 307}},
    {Qt::Vertical, Qt::Key_Up, false, false, {207, 300}, {200, 307}},
    {Qt::Vertical, Qt::Key_Up, true, false, {207, 300}, {200, 307}},
    {Qt::Vertical, Qt::Key_Up, false, true, {193, 300}, {200, 293}},
    {Qt::Vertical, Qt::Key_Down, false, false, {193, 300}, {200, 293}},
    {Qt::Vertical, Qt::Key_Down, true, false, {193, 300}, {200, 293}},
    {Qt::Vertical, Qt::Key_Down, false, true, {207, 300}, {200, 307}},
    // Across it: the other handle.
    {Qt::Horizontal, Qt::Key_Up, false, false, {200, 307}, {207, 300}},
    {Qt::Horizontal, Qt::Key_Up, true, false, {200, 307}, {207, 300}},
    {Qt::Horizontal, Qt::Key_Up, false, true, {200, 293}, {193, 300}},
    {Qt::Horizontal, Qt::Key_Down, false, false, {200, 293}, {193, 300}},
    {Qt::Horizontal, Qt::Key_Down, true, false, {200, 293}, {193, 300}},
    {Qt::Horizontal, Qt::Key_Down, false, true, {200, 307}, {207, 300}},
    {Qt::Vertical, Qt::Key_Left, false, false, {200, 293}, {193, 300}},
    {Qt::Vertical, Qt::Key_Left, true, false, {200, 307}, {207, 300}},
    {Qt::Vertical, Qt::Key_Left, false, true, {200, 293}, {193, 300}},
    {Qt::Vertical, Qt::Key_Right, false, false, {200, 307}, {207, 300}},
    {Qt::Vertical, Qt::Key_Right, true, false, {200, 293}, {193, 300}},
    {Qt::Vertical, Qt::Key_Right, false, true, {200, 307}, {207, 300}},
    // To the ends: Home always takes the lower handle, End always the upper one.
    {Qt::Horizontal, Qt::Key_Home, false, false, {0, 300}, {0, 300}},
    {Qt::Horizontal, Qt::Key_Home, true, true, {0, 300}, {0, 300}},
    {Qt::Vertical, Qt::Key_Home, false, false, {0, 300}, {0, 300}},
    {Qt::Horizontal, Qt::Key_End, false, false, {200, 500}, {200, 500}},
    {Qt::Horizontal, Qt::Key_End, true, true, {200, 500}, {200, 500}},
    {Qt::Vertical, Qt::Key_End, false, false, {200, 500}, {200, 500}},
};

TEST_F(SpanSliderTest, keys_move_the_handle_that_they_stand_for)
{
    slider.setSingleStep(7);
    for (const KeyCase &c : keyCases) {
        slider.setOrientation(c.orientation);
        slider.setInvertedAppearance(c.invertedAppearance);
        slider.setInvertedControls(c.invertedControls);
        for (Qt::LayoutDirection direction : {Qt::LeftToRight, Qt::RightToLeft}) {
            slider.setLayoutDirection(direction); // makes no difference to the keys
            for (QxtSpanSlider::SpanHandle main : {lowerHandle, upperHandle}) {
                show(200, 300);
                logic.mainControl = main;
                key(c.key);
                const int *span = main == lowerHandle ? c.mainLower : c.mainUpper;
                EXPECT_EQ(state(), QStringLiteral("%1 %2 | %1 %2").arg(span[0]).arg(span[1]))
                    << "orientation " << c.orientation << " key " << c.key << " appearance "
                    << c.invertedAppearance << " controls " << c.invertedControls << " direction "
                    << direction << " main " << main;
                EXPECT_EQ(logic.mainControl, main);
            }
        }
    }
}

TEST_F(SpanSliderTest, a_key_reports_value_then_span_after_the_base_class_has_moved_its_own_value)
{
    show(200, 300);
    QObject::connect(&slider, &QAbstractSlider::valueChanged, &slider,
                     [this](int value) { signalLog += QStringLiteral("value %1").arg(value); });
    key(Qt::Key_Right);
    EXPECT_EQ(takeSignals(), QStringList({"value 1", "lower 201", "span 201 300"}));
    key(Qt::Key_Up);
    EXPECT_EQ(takeSignals(), QStringList({"value 2", "upper 301", "span 201 301"}));
}

TEST_F(SpanSliderTest, a_key_commits_without_tracking_too)
{
    slider.setTracking(false);
    show(200, 300);
    key(Qt::Key_Right);
    EXPECT_EQ(takeSignals(), QStringList({"lower 201", "span 201 300"}));
}

TEST_F(SpanSliderTest, a_key_steps_from_the_value_and_not_from_a_waiting_position)
{
    slider.setTracking(false);
    show(200, 300);
    slider.setLowerPosition(220);
    slider.setUpperPosition(280);
    key(Qt::Key_Right);
    EXPECT_EQ(state(), "201 280 | 201 280"); // what waits is committed with it
    slider.setUpperPosition(260);
    key(Qt::Key_Up);
    EXPECT_EQ(state(), "201 281 | 201 281");
}

TEST_F(SpanSliderTest, keys_stop_at_the_ends_of_the_range)
{
    slider.setSingleStep(30);
    show(20, 490);
    key(Qt::Key_Left);
    key(Qt::Key_Up);
    EXPECT_EQ(state(), "0 500 | 0 500");
    takeSignals();
    key(Qt::Key_Left);
    key(Qt::Key_Up);
    EXPECT_EQ(takeSignals(), QStringList());
}

TEST_F(SpanSliderTest, steps_beyond_all_numbers_stop_at_the_ends_of_the_range)
{
    constexpr int largest = std::numeric_limits<int>::max();
    slider.setRange(-largest, largest);
    slider.setSingleStep(largest);
    slider.setSpan(-10, 10);
    logic.triggerAction(QAbstractSlider::SliderSingleStepAdd, false);
    logic.triggerAction(QAbstractSlider::SliderSingleStepSub, true);
    EXPECT_EQ(state(), QStringLiteral("%1 %2 | %1 %2").arg(-largest).arg(largest));
}

TEST_F(SpanSliderTest, other_keys_are_left_to_the_base_class_and_ignored)
{
    show(200, 300);
    for (Qt::Key which : {Qt::Key_PageUp, Qt::Key_PageDown, Qt::Key_A, Qt::Key_Escape}) {
        QKeyEvent event(QEvent::KeyPress, which, Qt::NoModifier);
        QCoreApplication::sendEvent(&slider, &event);
        EXPECT_FALSE(event.isAccepted()) << which;
    }
    QKeyEvent event(QEvent::KeyPress, Qt::Key_Left, Qt::NoModifier);
    QCoreApplication::sendEvent(&slider, &event);
    EXPECT_TRUE(event.isAccepted());
    EXPECT_EQ(state(), "199 300 | 199 300");
}

TEST_F(SpanSliderTest, keys_push_the_main_handle_across_when_it_is_free)
{
    slider.setSingleStep(10);
    show(295, 300);
    key(Qt::Key_Right);
    // The handle that was crossed gets the position that the crossing one had.
    EXPECT_EQ(takeSignals(),
              QStringList({"lower 295", "span 295 295", "upper 305", "span 295 305"}));
    EXPECT_EQ(state(), "295 305 | 295 305");
    EXPECT_EQ(logic.mainControl, upperHandle);

    key(Qt::Key_Right);
    EXPECT_EQ(state(), "295 315 | 295 315");
}

TEST_F(SpanSliderTest, keys_push_the_other_handle_across_when_it_is_free)
{
    slider.setSingleStep(10);
    show(295, 300);
    key(Qt::Key_Down);
    EXPECT_EQ(takeSignals(),
              QStringList({"lower 290", "span 290 295", "upper 300", "span 290 300"}));
    EXPECT_EQ(state(), "290 300 | 290 300");
    EXPECT_EQ(logic.mainControl, upperHandle);
}

TEST_F(SpanSliderTest, keys_let_handles_meet_without_crossing)
{
    slider.setSingleStep(10);
    slider.setHandleMovementMode(QxtSpanSlider::NoCrossing);
    show(295, 300);
    key(Qt::Key_Right);
    EXPECT_EQ(state(), "300 300 | 300 300");
    key(Qt::Key_Right);
    key(Qt::Key_Down);
    EXPECT_EQ(state(), "300 300 | 300 300");
    key(Qt::Key_Up);
    EXPECT_EQ(state(), "300 310 | 300 310");
    EXPECT_EQ(logic.mainControl, lowerHandle);
}

TEST_F(SpanSliderTest, keys_keep_handles_one_apart_without_overlapping)
{
    slider.setSingleStep(10);
    slider.setHandleMovementMode(QxtSpanSlider::NoOverlapping);
    show(295, 300);
    key(Qt::Key_Right);
    EXPECT_EQ(state(), "299 300 | 299 300");
    key(Qt::Key_Down);
    EXPECT_EQ(state(), "299 300 | 299 300");
    key(Qt::Key_Left);
    EXPECT_EQ(state(), "289 300 | 289 300");
    key(Qt::Key_Down);
    EXPECT_EQ(state(), "289 290 | 289 290");
}

/// An action on the span 200 to 300 of the range 50 to 500, single steps of 7.
struct ActionCase {
    QAbstractSlider::SliderAction action;
    int lowerActs[2]; ///< span afterwards when the lower handle acts
    int upperActs[2];
};

TEST_F(SpanSliderTest, actions_move_the_acting_handle)
{
    const ActionCase cases[] = {
        {QAbstractSlider::SliderSingleStepAdd, {207, 300}, {200, 307}},
        {QAbstractSlider::SliderSingleStepSub, {193, 300}, {200, 293}},
        {QAbstractSlider::SliderToMinimum, {50, 300}, {50, 300}},
        {QAbstractSlider::SliderToMaximum, {200, 500}, {200, 500}},
        {QAbstractSlider::SliderMove, {200, 300}, {200, 300}},
        {QAbstractSlider::SliderNoAction, {200, 300}, {200, 300}},
    };
    slider.setRange(50, 500);
    slider.setSingleStep(7);
    for (const ActionCase &c : cases) {
        for (QxtSpanSlider::SpanHandle mainControl : {lowerHandle, upperHandle}) {
            for (bool main : {true, false}) {
                slider.setSpan(200, 300);
                logic.mainControl = mainControl;
                logic.triggerAction(c.action, main);
                const bool upperActs = main == (mainControl == upperHandle);
                const int *span = upperActs ? c.upperActs : c.lowerActs;
                EXPECT_EQ(state(), QStringLiteral("%1 %2 | %1 %2").arg(span[0]).arg(span[1]))
                    << "action " << c.action << " main " << main << " of " << mainControl;
                EXPECT_FALSE(logic.blockTracking);
            }
        }
    }
}

/// An action that would take a handle of the span 200 to 300 beyond the other one, with steps of
/// 150 in the range 50 to 500.
struct CrossingCase {
    QAbstractSlider::SliderAction action;
    bool upperActs;
    QxtSpanSlider::HandleMovementMode mode;
    int span[2];
    bool crosses;
};

TEST_F(SpanSliderTest, actions_stop_or_cross_at_the_other_handle_as_the_mode_says)
{
    const CrossingCase cases[] = {
        {QAbstractSlider::SliderSingleStepAdd, false, QxtSpanSlider::NoCrossing, {300, 300}, false},
        {QAbstractSlider::SliderSingleStepAdd,
         false,
         QxtSpanSlider::NoOverlapping,
         {299, 300},
         false},
        {QAbstractSlider::SliderSingleStepAdd,
         false,
         QxtSpanSlider::FreeMovement,
         {200, 350},
         true},
        {QAbstractSlider::SliderToMaximum, false, QxtSpanSlider::NoCrossing, {300, 300}, false},
        {QAbstractSlider::SliderToMaximum, false, QxtSpanSlider::NoOverlapping, {299, 300}, false},
        {QAbstractSlider::SliderToMaximum, false, QxtSpanSlider::FreeMovement, {200, 500}, true},
        {QAbstractSlider::SliderSingleStepSub, true, QxtSpanSlider::NoCrossing, {200, 200}, false},
        {QAbstractSlider::SliderSingleStepSub,
         true,
         QxtSpanSlider::NoOverlapping,
         {200, 201},
         false},
        {QAbstractSlider::SliderSingleStepSub, true, QxtSpanSlider::FreeMovement, {150, 300}, true},
        {QAbstractSlider::SliderToMinimum, true, QxtSpanSlider::NoCrossing, {200, 200}, false},
        {QAbstractSlider::SliderToMinimum, true, QxtSpanSlider::NoOverlapping, {200, 201}, false},
        {QAbstractSlider::SliderToMinimum, true, QxtSpanSlider::FreeMovement, {50, 300}, true},
    };
    slider.setRange(50, 500);
    slider.setSingleStep(150);
    for (const CrossingCase &c : cases) {
        for (QxtSpanSlider::SpanHandle mainControl : {lowerHandle, upperHandle}) {
            slider.setHandleMovementMode(c.mode);
            slider.setSpan(200, 300);
            logic.mainControl = mainControl;
            logic.triggerAction(c.action, c.upperActs == (mainControl == upperHandle));
            EXPECT_EQ(state(), QStringLiteral("%1 %2 | %1 %2").arg(c.span[0]).arg(c.span[1]))
                << "action " << c.action << " mode " << c.mode;
            EXPECT_EQ(logic.mainControl != mainControl, c.crosses)
                << "action " << c.action << " mode " << c.mode;
        }
    }
}

TEST_F(SpanSliderTest, an_action_holds_the_commit_back_until_its_end)
{
    slider.setSpan(200, 300);
    slider.setSliderDown(true);
    QVector<bool> blocked;
    QObject::connect(&slider, &QxtSpanSlider::lowerPositionChanged, &slider,
                     [&] { blocked += logic.blockTracking; });
    QObject::connect(&slider, &QxtSpanSlider::lowerValueChanged, &slider,
                     [&] { blocked += logic.blockTracking; });
    logic.triggerAction(QAbstractSlider::SliderSingleStepAdd, true);
    EXPECT_EQ(blocked, QVector<bool>({true, false})); // the position, then its value
}

TEST_F(SpanSliderTest, a_move_commits_waiting_positions)
{
    slider.setTracking(false);
    slider.setSpan(200, 300);
    slider.setLowerPosition(210);
    slider.setUpperPosition(290);
    takeSignals();
    logic.triggerAction(QAbstractSlider::SliderNoAction, true);
    EXPECT_EQ(takeSignals(),
              QStringList({"lower 210", "span 210 300", "upper 290", "span 210 290"}));
}

TEST_F(SpanSliderTest, an_unknown_action_warns_and_sends_the_lower_handle_to_0)
{
    using Action = QAbstractSlider::SliderAction;
    // Whatever handle acts; where handles may not cross, the other one would stop the upper handle.
    slider.setHandleMovementMode(QxtSpanSlider::NoCrossing);
    for (Action action : {QAbstractSlider::SliderPageStepAdd, QAbstractSlider::SliderPageStepSub}) {
        for (bool main : {true, false}) {
            slider.setSpan(200, 300);
            takeWarnings();
            logic.triggerAction(action, main);
            EXPECT_EQ(takeWarnings(),
                      QStringList("QxtSpanSliderPrivate::triggerAction: Unknown action"));
            EXPECT_EQ(state(), "0 300 | 0 300");
        }
    }
}

TEST_F(SpanSliderTest, an_unknown_action_crosses_an_upper_handle_below_0)
{
    slider.setRange(-100, -50);
    slider.setSpan(-80, -60);
    logic.triggerAction(QAbstractSlider::SliderPageStepAdd, true);
    EXPECT_EQ(takeWarnings(), QStringList("QxtSpanSliderPrivate::triggerAction: Unknown action"));
    EXPECT_EQ(state(), "-80 -50 | -80 -50");
    EXPECT_EQ(logic.mainControl, upperHandle);
}

} // namespace
