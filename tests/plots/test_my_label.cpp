// SPDX-License-Identifier: GPL-3.0-or-later
#include "plots/my_label.h"
#include "tests/gui_test.h"

#include <QCoreApplication>
#include <QEvent>
#include <QHBoxLayout>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

namespace
{

/// A label between the edges of a window, with the mouse outside of it.
class MyLabelTest : public testing::Test
{
protected:
    void SetUp() override
    {
        auto *layout = new QHBoxLayout(&window);
        layout->setContentsMargins(50, 50, 50, 50);
        label->setFixedSize(100, 30);
        layout->addWidget(label);
        window.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
        bringMouseTo(window, outside);
        hover.clear();
    }

    void moveMouse(QPoint to) { QTest::mouseMove(window.windowHandle(), to); }
    QPoint inside() const { return label->mapTo(&window, label->rect().center()); }

    QWidget window;
    MyLabel *label = new MyLabel(&window);
    QSignalSpy hover{label, &MyLabel::hoverLabel};
    QSignalSpy clicks{label, &MyLabel::clicked};
    const QPoint outside{5, 5};
};

TEST_F(MyLabelTest, reports_each_coming_and_going_once)
{
    moveMouse(inside());
    ASSERT_EQ(hover.size(), 1);
    EXPECT_TRUE(hover[0][0].toBool());
    EXPECT_EQ(label->cursor().shape(), Qt::PointingHandCursor);

    moveMouse(inside() + QPoint(1, 1));
    EXPECT_EQ(hover.size(), 1);

    moveMouse(outside);
    ASSERT_EQ(hover.size(), 2);
    EXPECT_FALSE(hover[1][0].toBool());
    EXPECT_EQ(label->cursor().shape(), Qt::ArrowCursor);
    EXPECT_FALSE(label->testAttribute(Qt::WA_SetCursor));
}

TEST_F(MyLabelTest, a_second_enter_without_a_leave_reports_nothing)
{
    QEvent enter(QEvent::Enter);
    QEvent leave(QEvent::Leave);
    QCoreApplication::sendEvent(label, &enter);
    QCoreApplication::sendEvent(label, &enter);
    EXPECT_EQ(hover.size(), 1);
    QCoreApplication::sendEvent(label, &leave);
    QCoreApplication::sendEvent(label, &leave);
    EXPECT_EQ(hover.size(), 2);
}

TEST_F(MyLabelTest, any_button_clicks_at_the_press)
{
    for (Qt::MouseButton button : {Qt::LeftButton, Qt::RightButton, Qt::MiddleButton}) {
        QTest::mousePress(window.windowHandle(), button, {}, inside());
        EXPECT_EQ(clicks.size(), 1);
        QTest::mouseRelease(window.windowHandle(), button, {}, inside());
        EXPECT_EQ(clicks.size(), 1);
        clicks.clear();
    }
}

TEST_F(MyLabelTest, unclickable_reacts_to_nothing)
{
    label->setClickable(false);
    moveMouse(inside());
    EXPECT_EQ(label->cursor().shape(), Qt::ArrowCursor);
    QTest::mouseClick(window.windowHandle(), Qt::LeftButton, {}, inside());
    moveMouse(outside);
    EXPECT_EQ(hover.size(), 0);
    EXPECT_EQ(clicks.size(), 0);
}

TEST_F(MyLabelTest, turned_unclickable_while_hovered_keeps_its_cursor)
{
    moveMouse(inside());
    label->setClickable(false);
    moveMouse(outside);
    EXPECT_EQ(hover.size(), 1);
    EXPECT_EQ(label->cursor().shape(), Qt::PointingHandCursor);

    // Turned on again it still counts as hovered, so that the next leave resets it.
    label->setClickable(true);
    moveMouse(inside());
    EXPECT_EQ(hover.size(), 1);
    moveMouse(outside);
    ASSERT_EQ(hover.size(), 2);
    EXPECT_FALSE(hover[1][0].toBool());
    EXPECT_EQ(label->cursor().shape(), Qt::ArrowCursor);
}

/// Counts the presses of the mouse that reach a widget.
class Presses : public QObject
{
public:
    explicit Presses(QWidget *widget) { widget->installEventFilter(this); }

    int count = 0;

private:
    bool eventFilter(QObject *, QEvent *event) override
    {
        count += event->type() == QEvent::MouseButtonPress;
        return false;
    }
};

TEST_F(MyLabelTest, a_press_does_not_reach_what_lies_below)
{
    const Presses below(&window);
    for (bool clickable : {true, false}) {
        label->setClickable(clickable);
        QTest::mouseClick(window.windowHandle(), Qt::LeftButton, {}, inside());
        EXPECT_EQ(below.count, 0) << clickable;
    }
    QTest::mouseClick(window.windowHandle(), Qt::LeftButton, {}, outside);
    EXPECT_EQ(below.count, 1);
}

TEST_F(MyLabelTest, asks_for_hover_events)
{
    EXPECT_TRUE(label->testAttribute(Qt::WA_Hover));
}

TEST_F(MyLabelTest, declares_its_signals_in_order)
{
    const QMetaObject &meta = MyLabel::staticMetaObject;
    const int first = meta.methodOffset();
    ASSERT_EQ(meta.methodCount() - first, 2);
    EXPECT_EQ(meta.method(first).methodSignature(), "clicked()");
    EXPECT_EQ(meta.method(first + 1).methodSignature(), "hoverLabel(bool)");
}

} // namespace
