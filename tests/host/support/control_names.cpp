// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/host/support/control_names.h"

#include "host/workbench/slice_view.h"
#include "host/workbench/time_course_view.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractSlider>
#include <QAbstractSpinBox>
#include <QAccessible>
#include <QComboBox>
#include <QGraphicsView>
#include <QHeaderView>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QScrollBar>
#include <QTabBar>
#include <gtest/gtest.h>

namespace corvane
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
           qobject_cast<const QComboBox *>(widget) || qobject_cast<const QGraphicsView *>(widget) ||
           qobject_cast<const QLineEdit *>(widget) ||
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

} // namespace corvane
