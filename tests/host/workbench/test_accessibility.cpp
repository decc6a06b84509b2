// SPDX-License-Identifier: GPL-3.0-or-later
//
// Every window of the host: each control has a name for screen readers and is reached with Tab.
#include "host/session/session.h"
#include "host/workbench/main_window.h"
#include "tests/host/support/control_names.h"
#include "tests/host/workbench/host_windows.h"

#include <QApplication>
#include <QMenu>
#include <QProgressBar>
#include <QTabBar>
#include <QTest>
#include <gmock/gmock.h>

namespace corvane
{

namespace
{

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
        EXPECT_GT(expectNames(window), 0);
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
    Session session;
    const MainWindow window(session);
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
