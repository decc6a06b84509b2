// SPDX-License-Identifier: GPL-3.0-or-later
#include "plots/qxt_version.h"
#include "tests/plots/span_slider_fixture.h"

#include <QMetaEnum>
#include <QMetaProperty>

namespace
{

TEST_F(SpanSliderTest, starts_with_an_empty_span_and_free_handles)
{
    const QxtSpanSlider fresh;
    EXPECT_EQ(fresh.lowerValue(), 0);
    EXPECT_EQ(fresh.upperValue(), 0);
    EXPECT_EQ(fresh.lowerPosition(), 0);
    EXPECT_EQ(fresh.upperPosition(), 0);
    EXPECT_EQ(fresh.handleMovementMode(), QxtSpanSlider::FreeMovement);
    EXPECT_TRUE(fresh.hasTracking());
    EXPECT_FALSE(fresh.isSliderDown());
    EXPECT_EQ(logic.lastPressed, QxtSpanSlider::NoHandle);
    EXPECT_EQ(logic.mainControl, QxtSpanSlider::LowerHandle);
}

TEST_F(SpanSliderTest, a_new_span_reports_lower_then_upper_then_span)
{
    slider.setSpan(100, 300);
    EXPECT_EQ(takeSignals(), QStringList({"lower 100", "upper 300", "span 100 300"}));
    EXPECT_EQ(state(), "100 300 | 100 300");
}

TEST_F(SpanSliderTest, a_span_may_be_given_in_either_order)
{
    slider.setRange(0, 1000);
    slider.setSpan(700, 300);
    EXPECT_EQ(takeSignals(), QStringList({"lower 300", "upper 700", "span 300 700"}));
    EXPECT_EQ(state(), "300 700 | 300 700");
}

TEST_F(SpanSliderTest, reports_only_what_changes)
{
    slider.setSpan(100, 300);
    takeSignals();
    slider.setSpan(100, 310);
    EXPECT_EQ(takeSignals(), QStringList({"upper 310", "span 100 310"}));
    slider.setSpan(90, 310);
    EXPECT_EQ(takeSignals(), QStringList({"lower 90", "span 90 310"}));
    slider.setSpan(90, 310);
    EXPECT_EQ(takeSignals(), QStringList());
}

TEST_F(SpanSliderTest, values_are_bounded_before_they_are_compared)
{
    slider.setRange(0, 1000);
    slider.setSpan(0, 1000);
    takeSignals();
    slider.setSpan(-5, 2000);
    EXPECT_EQ(takeSignals(), QStringList());
    EXPECT_EQ(state(), "0 1000 | 0 1000");
}

TEST_F(SpanSliderTest, a_single_value_beyond_the_other_one_changes_places_with_it)
{
    slider.setSpan(100, 300);
    takeSignals();
    slider.setLowerValue(400);
    EXPECT_EQ(takeSignals(), QStringList({"lower 300", "upper 400", "span 300 400"}));
    slider.setUpperValue(50);
    EXPECT_EQ(takeSignals(), QStringList({"lower 50", "upper 300", "span 50 300"}));
    slider.setLowerValue(60);
    EXPECT_EQ(takeSignals(), QStringList({"lower 60", "span 60 300"}));
    slider.setUpperValue(290);
    EXPECT_EQ(takeSignals(), QStringList({"upper 290", "span 60 290"}));
}

TEST_F(SpanSliderTest, a_position_is_committed_at_once_with_tracking)
{
    slider.setSpan(100, 300);
    takeSignals();
    slider.setLowerPosition(120);
    EXPECT_EQ(takeSignals(), QStringList({"lower 120", "span 120 300"}));
    slider.setUpperPosition(280);
    EXPECT_EQ(takeSignals(), QStringList({"upper 280", "span 120 280"}));
    slider.setUpperPosition(280);
    EXPECT_EQ(takeSignals(), QStringList());
    EXPECT_EQ(state(), "120 280 | 120 280");
}

TEST_F(SpanSliderTest, a_position_beyond_the_other_handle_is_committed_in_order)
{
    slider.setSpan(100, 300);
    takeSignals();
    slider.setLowerPosition(400);
    EXPECT_EQ(takeSignals(), QStringList({"lower 300", "upper 400", "span 300 400"}));
    EXPECT_EQ(state(), "300 400 | 300 400");
}

TEST_F(SpanSliderTest, a_position_moved_out_of_a_coincident_pair_leaves_the_other_handle_behind)
{
    slider.setSpan(300, 300);
    takeSignals();
    slider.setLowerPosition(400);
    EXPECT_EQ(takeSignals(), QStringList({"upper 400", "span 300 400"}));
    EXPECT_EQ(state(), "300 400 | 300 400");

    slider.setSpan(300, 300);
    takeSignals();
    slider.setUpperPosition(200);
    EXPECT_EQ(takeSignals(), QStringList({"lower 200", "span 200 300"}));
    EXPECT_EQ(state(), "200 300 | 200 300");
}

TEST_F(SpanSliderTest, a_position_beyond_the_range_is_committed_at_the_ranges_end)
{
    slider.setSpan(100, 300);
    takeSignals();
    slider.setUpperPosition(700);
    EXPECT_EQ(takeSignals(), QStringList({"upper 500", "span 100 500"}));
    EXPECT_EQ(state(), "100 500 | 100 500");
    // At the end already: nothing changes, and the position stays where it was put.
    slider.setUpperPosition(700);
    EXPECT_EQ(takeSignals(), QStringList());
    EXPECT_EQ(state(), "100 500 | 100 700");
}

TEST_F(SpanSliderTest, a_position_waits_without_tracking)
{
    slider.setTracking(false);
    slider.setSpan(100, 300);
    takeSignals();
    slider.setLowerPosition(120);
    slider.setUpperPosition(280);
    EXPECT_EQ(takeSignals(), QStringList());
    EXPECT_EQ(state(), "100 300 | 120 280");
}

TEST_F(SpanSliderTest, a_position_put_beyond_a_coincident_handle_stays_there_without_tracking)
{
    slider.setTracking(false);
    slider.setSpan(300, 300);
    slider.setLowerPosition(400);
    takeSignals();
    logic.triggerAction(QAbstractSlider::SliderMove, true);
    // Only the other handle's value is new.
    EXPECT_EQ(takeSignals(), QStringList({"upper 400", "span 300 400"}));
    EXPECT_EQ(state(), "300 400 | 400 400");
}

TEST_F(SpanSliderTest, a_position_is_reported_only_while_the_slider_is_down)
{
    slider.setTracking(false);
    slider.setSpan(100, 300);
    slider.setSliderDown(true);
    takeSignals();
    slider.setLowerPosition(120);
    slider.setUpperPosition(280);
    EXPECT_EQ(takeSignals(), QStringList({"lowerPos 120", "upperPos 280"}));
}

TEST_F(SpanSliderTest, a_narrower_range_takes_the_span_with_it)
{
    slider.setSpan(100, 300);
    takeSignals();
    slider.setRange(150, 250);
    EXPECT_EQ(takeSignals(), QStringList({"lower 150", "upper 250", "span 150 250"}));
    slider.setMaximum(200);
    EXPECT_EQ(takeSignals(), QStringList({"upper 200", "span 150 200"}));
    slider.setMinimum(160);
    EXPECT_EQ(takeSignals(), QStringList({"lower 160", "span 160 200"}));
    EXPECT_EQ(state(), "160 200 | 160 200");
}

TEST_F(SpanSliderTest, a_range_beside_the_span_collapses_it)
{
    slider.setSpan(100, 300);
    slider.setRange(600, 900);
    EXPECT_EQ(state(), "600 600 | 600 600");
    slider.setRange(-50, -20);
    EXPECT_EQ(state(), "-20 -20 | -20 -20");
}

TEST_F(SpanSliderTest, a_wider_range_leaves_the_span)
{
    slider.setSpan(100, 300);
    takeSignals();
    slider.setRange(-1000, 1000);
    EXPECT_EQ(takeSignals(), QStringList());
    EXPECT_EQ(state(), "100 300 | 100 300");
}

TEST_F(SpanSliderTest, is_reached_by_name_through_its_meta_object)
{
    EXPECT_TRUE(slider.setProperty("upperValue", 300));
    EXPECT_TRUE(slider.setProperty("lowerValue", 100));
    EXPECT_EQ(state(), "100 300 | 100 300");
    slider.setTracking(false);
    EXPECT_TRUE(slider.setProperty("lowerPosition", 110));
    EXPECT_TRUE(slider.setProperty("upperPosition", 290));
    EXPECT_EQ(slider.property("lowerValue").toInt(), 100);
    EXPECT_EQ(slider.property("upperValue").toInt(), 300);
    EXPECT_EQ(slider.property("lowerPosition").toInt(), 110);
    EXPECT_EQ(slider.property("upperPosition").toInt(), 290);
    EXPECT_TRUE(slider.setProperty("handleMovementMode", "NoOverlapping"));
    EXPECT_EQ(slider.handleMovementMode(), QxtSpanSlider::NoOverlapping);
    EXPECT_EQ(slider.property("handleMovementMode").toInt(), 2);
}

TEST_F(SpanSliderTest, declares_its_properties_in_order)
{
    const QMetaObject &meta = QxtSpanSlider::staticMetaObject;
    QStringList properties;
    for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i) {
        const QMetaProperty property = meta.property(i);
        EXPECT_TRUE(property.isReadable() && property.isWritable()) << property.name();
        properties += QStringLiteral("%1 %2").arg(property.typeName(), property.name());
    }
    EXPECT_EQ(properties,
              QStringList({"int lowerValue", "int upperValue", "int lowerPosition",
                           "int upperPosition", "HandleMovementMode handleMovementMode"}));
}

TEST_F(SpanSliderTest, declares_its_signals_and_slots_in_order)
{
    const QMetaObject &meta = QxtSpanSlider::staticMetaObject;
    QStringList signatures;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
        signatures += QString::fromLatin1(meta.method(i).methodSignature());
    EXPECT_EQ(
        signatures,
        QStringList({"spanChanged(int,int)", "lowerValueChanged(int)", "upperValueChanged(int)",
                     "lowerPositionChanged(int)", "upperPositionChanged(int)",
                     "sliderPressed(SpanHandle)", "setLowerValue(int)", "setUpperValue(int)",
                     "setSpan(int,int)", "setLowerPosition(int)", "setUpperPosition(int)"}));

    const QMetaObject &inner = QxtSpanSliderPrivate::staticMetaObject;
    ASSERT_EQ(inner.methodCount() - inner.methodOffset(), 2);
    EXPECT_EQ(inner.method(inner.methodOffset()).methodSignature(), "updateRange(int,int)");
    EXPECT_EQ(inner.method(inner.methodOffset() + 1).methodSignature(), "movePressedHandle()");
}

TEST_F(SpanSliderTest, declares_its_enums)
{
    const QMetaEnum modes = QMetaEnum::fromType<QxtSpanSlider::HandleMovementMode>();
    ASSERT_EQ(modes.keyCount(), 3);
    EXPECT_EQ(modes.keyToValue("FreeMovement"), 0);
    EXPECT_EQ(modes.keyToValue("NoCrossing"), 1);
    EXPECT_EQ(modes.keyToValue("NoOverlapping"), 2);
    EXPECT_EQ(QxtSpanSlider::NoHandle, 0);
    EXPECT_EQ(QxtSpanSlider::LowerHandle, 1);
    EXPECT_EQ(QxtSpanSlider::UpperHandle, 2);
}

TEST(QxtVersion, is_told)
{
    EXPECT_STREQ(qxtVersion(), "0.7.0");
}

} // namespace
