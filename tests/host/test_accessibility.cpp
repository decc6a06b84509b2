// SPDX-License-Identifier: GPL-3.0-or-later
//
// Every window of the host: each control has a name for screen readers and is reached with Tab.
#include "host/main_window.h"
#include "host/slice_view.h"
#include "host/time_course_view.h"
#include "host/workspace.h"
#include "tests/host/host_windows.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractSlider>
#include <QAbstractSpinBox>
#include <QAccessible>
#include <QApplication>
#include <QComboBox>
#include <QHeaderView>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QScrollBar>
#include <QTabBar>
#include <QtTest>
#include <gmock/gmock.h>

namespace corvane
{

namespace
{

bool isControl(const QWidget *widget)
{
    // Parts that Qt makes inside its own widgets, and Qt names them.
    if (widget->objectName().startsWith(QStringLiteral("qt_")) ||
        qobject_cast<const QScrollBar *>(widget) || qobject_cast<const QHeaderView *>(widget) ||
        widget->inherits("QTableCornerButton") || widget->inherits("QDockWidgetTitleButton") ||
        widget->inherits("QComboBoxPrivateContainer") || widget->inherits("QComboBoxListView"))
        return false;
    return qobject_cast<const QAbstractButton *>(widget) ||
           qobject_cast<const QAbstractItemView *>(widget) ||
           qobject_cast<const QAbstractSlider *>(widget) ||
           qobject_cast<const QAbstractSpinBox *>(widget) ||
           qobject_cast<const QComboBox *>(widget) || qobject_cast<const QLineEdit *>(widget) ||
           qobject_cast<const QPlainTextEdit *>(widget) ||
           qobject_cast<const QProgressBar *>(widget) || qobject_cast<const QTabBar *>(widget) ||
           qobject_cast<const SliceView *>(widget) || qobject_cast<const TimeCourseView *>(widget);
}

std::string nameOf(const QWidget *widget)
{
    return widget->metaObject()->className() +
           QStringLiteral(" %1 in %2")
               .arg(widget->objectName(), widget->parentWidget()->objectName())
               .toStdString();
}

int expectNames(const QWidget &window)
{
    int controls = 0;
    for (QWidget *widget : window.findChildren<QWidget *>()) {
        // Tabs are named after the current one; the bar is hidden while there is none.
        const auto *const tabs = qobject_cast<const QTabBar *>(widget);
        if (!isControl(widget) || (tabs != nullptr && tabs->count() == 0))
            continue;
        ++controls;
        const QAccessibleInterface *const accessible =
            QAccessible::queryAccessibleInterface(widget);
        EXPECT_NE(accessible, nullptr) << nameOf(widget);
        if (accessible != nullptr) {
            EXPECT_FALSE(accessible->text(QAccessible::Name).isEmpty()) << nameOf(widget);
        }
    }
    return controls;
}

/// Presses Tab until the focus is where it began.
void expectTabReachesAll(QWidget &window)
{
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    QSet<const QWidget *> reached;
    for (int n = 0; n < 200; ++n) {
        QWidget *const focus = QApplication::focusWidget();
        if (focus != nullptr && reached.contains(focus))
            break;
        reached.insert(focus);
        QTest::keyClick(focus != nullptr ? focus : &window, Qt::Key_Tab);
    }
    for (QWidget *widget : window.findChildren<QWidget *>()) {
        // The tabs are closed with Ctrl+W, and their buttons are for the mouse. A progress bar
        // takes no input.
        const bool takesNoKeys = qobject_cast<QTabBar *>(widget->parentWidget()) != nullptr ||
                                 qobject_cast<QProgressBar *>(widget) != nullptr;
        if (isControl(widget) && widget->isVisible() && widget->isEnabled() && !takesNoKeys) {
            EXPECT_TRUE(reached.contains(widget)) << nameOf(widget);
        }
    }
}

} // namespace

class Accessibility : public testing::TestWithParam<HostWindow>
{
};

TEST_P(Accessibility, EachControlHasAName)
{
    GetParam().show([](QWidget &window) {
        const int controls = expectNames(window);
        EXPECT_EQ(controls > 0, window.windowType() != Qt::ToolTip);
    });
}

TEST_P(Accessibility, TabReachesEachControl)
{
    GetParam().show([](QWidget &window) {
        if (window.windowType() != Qt::ToolTip)
            expectTabReachesAll(window);
    });
}

TEST_P(Accessibility, FitsOnASmallScreen)
{
    // 1366 x 768 pixels, less what the desktop takes for itself.
    GetParam().show([](QWidget &window) {
        EXPECT_LE(window.minimumSizeHint().width(), 1000);
        EXPECT_LE(window.minimumSizeHint().height(), 680);
    });
}

INSTANTIATE_TEST_SUITE_P(Host, Accessibility, testing::ValuesIn(hostWindows()),
                         [](const auto &window) { return window.param.name; });

TEST(AccessibilityOfTheWorkbench, EveryEntryOfTheMenusHasAText)
{
    Workspace workspace;
    const MainWindow window(workspace);
    int entries = 0;
    for (const QMenu *menu : window.findChildren<QMenu *>())
        for (const QAction *action : menu->actions())
            if (!action->isSeparator()) {
                ++entries;
                EXPECT_FALSE(action->text().isEmpty());
            }
    EXPECT_GT(entries, 15);
}

} // namespace corvane
