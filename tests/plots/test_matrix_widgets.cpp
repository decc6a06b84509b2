// SPDX-License-Identifier: GPL-3.0-or-later
#include "plots/connectivity_matrix_widget.h"
#include "plots/connectivity_matrix_widget_rect.h"
#include "plots/vertical_header_view.h"
#include "plots/vertical_label.h"
#include "plots/view_matrix_table.h"
#include "tests/support/modal_driver.h"

#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QGraphicsScene>
#include <QMenu>
#include <QPainter>
#include <QSignalSpy>
#include <QStandardItemModel>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

namespace
{

// The table.

TEST(ViewMatrixTable, says_that_the_mouse_leaves)
{
    ViewMatrixTable table;
    QSignalSpy leaves(&table, &ViewMatrixTable::mouseLeave);
    QEvent enter(QEvent::Enter);
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(&table, &enter);
    EXPECT_EQ(leaves.size(), 0);
    QApplication::sendEvent(&table, &leave);
    EXPECT_EQ(leaves.size(), 1);
}

TEST(ViewMatrixTable, declares_its_signal)
{
    const QMetaObject &meta = ViewMatrixTable::staticMetaObject;
    ASSERT_EQ(meta.methodCount() - meta.methodOffset(), 1);
    EXPECT_EQ(meta.method(meta.methodOffset()).methodSignature(), "mouseLeave()");
    EXPECT_EQ(meta.method(meta.methodOffset()).methodType(), QMetaMethod::Signal);
}

// The header.

/// Gives access to the painting of one section.
template <typename Header>
class Paintable : public Header
{
public:
    using Header::Header;
    using Header::paintSection;
};

class VerticalHeader : public testing::Test
{
protected:
    void SetUp() override
    {
        model.setHorizontalHeaderLabels({"A", "A long name of a region", "Region 2"});
        vertical.setModel(&model);
        plain.setModel(&model);
    }

    QStandardItemModel model{2, 3};
    Paintable<VerticalHeaderView> vertical;
    Paintable<QHeaderView> plain{Qt::Horizontal};
};

TEST_F(VerticalHeader, is_horizontal_and_as_high_as_its_longest_name)
{
    EXPECT_EQ(vertical.orientation(), Qt::Horizontal);
    EXPECT_EQ(vertical.sizeHint(), plain.sizeHint().transposed());
    EXPECT_GT(vertical.sizeHint().height(), vertical.sizeHint().width());
    EXPECT_EQ(vertical.minimumSizeHint(), plain.minimumSizeHint().transposed());
}

TEST_F(VerticalHeader, paints_a_section_turned_to_the_right)
{
    const QRect section(30, 10, 20, 150);
    const auto painted = [&](const auto &paint) {
        QImage image(100, 200, QImage::Format_RGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        paint(painter);
        EXPECT_TRUE(painter.transform().isIdentity());
        return image;
    };
    const QImage upright =
        painted([&](QPainter &painter) { vertical.paintSection(&painter, section, 1); });
    // Turned by 90 degrees, the section's left edge becomes its top edge.
    const QImage expected = painted([&](QPainter &painter) {
        painter.setTransform(QTransform(0, 1, -1, 0, 50, 10));
        plain.paintSection(&painter, QRect(0, 0, 150, 20), 1);
        painter.resetTransform();
    });
    EXPECT_EQ(upright, expected);

    const QImage lying =
        painted([&](QPainter &painter) { plain.paintSection(&painter, section, 1); });
    EXPECT_NE(upright, lying);
    QImage outside = upright;
    QPainter(&outside).fillRect(section, Qt::white);
    QImage white(100, 200, QImage::Format_RGB32);
    white.fill(Qt::white);
    EXPECT_EQ(outside, white) << "nothing is painted outside of the section";
}

// A square of the overview.

TEST(ConnectivityMatrixWidgetRect, without_a_table_ignores_a_press)
{
    QGraphicsScene scene;
    auto *const square = new ConnectivityMatrixWidgetRect;
    square->setRect(0, 0, 10, 10);
    scene.addItem(square);
    QGraphicsView view(&scene);
    view.show();
    QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, view.mapFromScene(5, 5));
    EXPECT_EQ(square->brush(), QBrush());
}

// The two classes without instances.

TEST(VerticalLabel, declares_nothing_of_its_own)
{
    const QMetaObject &meta = VerticalLabel::staticMetaObject;
    EXPECT_STREQ(meta.className(), "VerticalLabel");
    EXPECT_EQ(meta.methodCount(), meta.methodOffset());
    EXPECT_EQ(meta.propertyCount(), meta.propertyOffset());
}

class MatrixWidget : public testing::Test
{
protected:
    void SetUp() override
    {
        scene.addRect(0, 0, 50, 50, QPen(Qt::red), QBrush(Qt::blue));
        widget.resize(120, 100);
        widget.show();
    }

    void chooseFromMenu(int entry)
    {
        QTimer::singleShot(0, &widget, [this, entry] {
            auto *const menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
            if (!menu) {
                chooseFromMenu(entry);
                return;
            }
            QStringList texts;
            for (const QAction *action : menu->actions())
                texts += action->text();
            EXPECT_EQ(texts, QStringList({"Export to image...", "Export to CSV..."}));
            EXPECT_TRUE(menu->title().isEmpty());
            const QRect place = menu->actionGeometry(menu->actions().at(entry));
            QTest::mouseClick(menu, Qt::LeftButton, {}, place.center());
        });
    }

    QTemporaryDir folder;
    QGraphicsScene scene;
    ConnectivityMatrixWidget widget{&scene};
    ModalDriver dialogs;
};

TEST_F(MatrixWidget, declares_its_signals_and_slots_in_order)
{
    const QMetaObject &meta = ConnectivityMatrixWidget::staticMetaObject;
    const QList<QByteArray> expected = {"pickValue(QString)",
                                        "clearValue()",
                                        "showContextMenu(QPoint)",
                                        "highlightTable(QGraphicsSceneMouseEvent*)",
                                        "saveImage()",
                                        "saveCSV()"};
    ASSERT_EQ(meta.methodCount() - meta.methodOffset(), expected.size());
    for (int i = 0; i < expected.size(); ++i) {
        const QMetaMethod method = meta.method(meta.methodOffset() + i);
        EXPECT_EQ(method.methodSignature(), expected[i]);
        EXPECT_EQ(method.methodType(), i < 2 ? QMetaMethod::Signal : QMetaMethod::Slot);
    }
}

TEST_F(MatrixWidget, saves_its_picture)
{
    const QString path = folder.filePath(QStringLiteral("matrix.png"));
    chooseFromMenu(0);
    dialogs.expectFile(path);
    widget.showContextMenu(QPoint(5, 5));
    QImage saved;
    ASSERT_TRUE(saved.load(path, "PNG"));
    EXPECT_EQ(saved.convertToFormat(QImage::Format_RGB32),
              widget.grab().toImage().convertToFormat(QImage::Format_RGB32));
}

TEST_F(MatrixWidget, saves_no_table)
{
    chooseFromMenu(1);
    widget.showContextMenu(QPoint(5, 5)); // a dialog would be unexpected here
    widget.saveCSV();
    EXPECT_TRUE(widget.findChildren<QFileDialog *>().isEmpty());
    EXPECT_TRUE(QDir(folder.path()).isEmpty());
}

TEST_F(MatrixWidget, highlights_nothing)
{
    const QImage before = widget.grab().toImage();
    widget.highlightTable(nullptr);
    EXPECT_EQ(widget.grab().toImage(), before);
}

} // namespace
