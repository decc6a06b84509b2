// SPDX-License-Identifier: GPL-3.0-or-later
#include "plots/my_graphics_simple_text_item.h"
#include "tests/gui_test.h"

#include <QCursor>
#include <QGraphicsScene>
#include <QGraphicsSceneHoverEvent>
#include <QGraphicsView>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

namespace
{

class TextItemTest : public testing::Test
{
protected:
    void SetUp() override
    {
        item->setPlainText(QStringLiteral("Precuneus"));
        scene.addItem(item);
        scene.setSceneRect(-100, -100, 300, 300);
        view.setMouseTracking(true);
        view.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&view));
        bringMouseTo(view, {5, 5});
    }

    void moveMouse(QPoint to) { QTest::mouseMove(view.windowHandle(), to); }
    QPoint inside() const
    {
        return view.viewport()->mapTo(&view, view.mapFromScene(item->sceneBoundingRect().center()));
    }

    QGraphicsScene scene;
    QGraphicsView view{&scene};
    MyGraphicsSimpleTextItem *item = new MyGraphicsSimpleTextItem;
    QSignalSpy hover{item, &MyGraphicsSimpleTextItem::hovering};
};

TEST_F(TextItemTest, reports_each_coming_and_going_once)
{
    moveMouse(inside());
    ASSERT_EQ(hover.size(), 1);
    EXPECT_TRUE(hover[0][0].toBool());
    EXPECT_EQ(item->cursor().shape(), Qt::PointingHandCursor);

    moveMouse(inside() + QPoint(1, 1));
    EXPECT_EQ(hover.size(), 1);

    moveMouse({5, 5});
    ASSERT_EQ(hover.size(), 2);
    EXPECT_FALSE(hover[1][0].toBool());
    EXPECT_FALSE(item->hasCursor());
}

TEST_F(TextItemTest, a_repeated_event_reports_nothing)
{
    QGraphicsSceneHoverEvent enter(QEvent::GraphicsSceneHoverEnter);
    QGraphicsSceneHoverEvent leave(QEvent::GraphicsSceneHoverLeave);
    scene.sendEvent(item, &leave);
    EXPECT_EQ(hover.size(), 0);
    scene.sendEvent(item, &enter);
    scene.sendEvent(item, &enter);
    EXPECT_EQ(hover.size(), 1);
    scene.sendEvent(item, &leave);
    scene.sendEvent(item, &leave);
    EXPECT_EQ(hover.size(), 2);
}

TEST_F(TextItemTest, is_black_and_has_a_type_of_its_own)
{
    EXPECT_EQ(item->defaultTextColor(), QColor(Qt::black));
    const QGraphicsItem *plain = item;
    EXPECT_EQ(plain->type(), 65537);
    EXPECT_EQ(qgraphicsitem_cast<const MyGraphicsSimpleTextItem *>(plain), item);
}

TEST_F(TextItemTest, declares_one_signal)
{
    const QMetaObject &meta = MyGraphicsSimpleTextItem::staticMetaObject;
    ASSERT_EQ(meta.methodCount() - meta.methodOffset(), 1);
    EXPECT_EQ(meta.method(meta.methodOffset()).methodSignature(), "hovering(bool)");
}

} // namespace
