// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/tour/user_input.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QCoreApplication>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenuBar>
#include <QMouseEvent>
#include <QPointer>
#include <QPushButton>
#include <QTabBar>

namespace corvane
{

namespace
{

/// Sends one event unless an earlier one has closed the widget.
void sendMouse(const QPointer<QWidget> &widget, QEvent::Type type, const QPoint &place,
               Qt::MouseButtons held)
{
    if (widget.isNull())
        return;
    QMouseEvent event(type, place, widget->mapToGlobal(place), Qt::LeftButton, held,
                      Qt::NoModifier);
    QCoreApplication::sendEvent(widget, &event);
}

QPoint placeOf(QAbstractItemView *view, int row, int column)
{
    const QModelIndex index = view->model()->index(row, column, view->rootIndex());
    view->scrollTo(index);
    const QRect item = view->visualRect(index);
    return {std::min(item.center().x(), item.left() + 60), item.center().y()};
}

} // namespace

void click(QWidget *widget, const QPoint &place)
{
    const QPointer<QWidget> guarded(widget);
    if (widget->focusPolicy() & Qt::ClickFocus)
        widget->setFocus(Qt::MouseFocusReason);
    sendMouse(guarded, QEvent::MouseButtonPress, place, Qt::LeftButton);
    sendMouse(guarded, QEvent::MouseButtonRelease, place, Qt::NoButton);
}

void click(QWidget *widget)
{
    const auto *const button = qobject_cast<QAbstractButton *>(widget);
    const bool hasMark = button != nullptr && qobject_cast<QPushButton *>(widget) == nullptr;
    click(widget, hasMark ? QPoint(8, widget->height() / 2) : widget->rect().center());
}

void doubleClick(QWidget *widget, const QPoint &place)
{
    const QPointer<QWidget> guarded(widget);
    click(widget, place);
    sendMouse(guarded, QEvent::MouseButtonDblClick, place, Qt::LeftButton);
    sendMouse(guarded, QEvent::MouseButtonRelease, place, Qt::NoButton);
}

void pressKey(QWidget *widget, int key)
{
    const QPointer<QWidget> guarded(widget);
    for (QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
        QKeyEvent event(type, key, Qt::NoModifier);
        if (!guarded.isNull())
            QCoreApplication::sendEvent(guarded, &event);
    }
}

void enterText(QWidget *widget, const QString &text)
{
    widget->setFocus(Qt::OtherFocusReason);
    if (auto *const line = qobject_cast<QLineEdit *>(widget))
        line->selectAll();
    QInputMethodEvent event;
    event.setCommitString(text);
    QCoreApplication::sendEvent(widget, &event);
}

void clickItem(QAbstractItemView *view, int row, int column)
{
    view->setFocus(Qt::MouseFocusReason);
    click(view->viewport(), placeOf(view, row, column));
}

void doubleClickItem(QAbstractItemView *view, int row, int column)
{
    view->setFocus(Qt::MouseFocusReason);
    doubleClick(view->viewport(), placeOf(view, row, column));
}

void clickTab(QTabBar *tabs, int index)
{
    click(tabs, tabs->tabRect(index).center());
}

void clickMenu(QMenuBar *bar, const QAction *entry)
{
    click(bar, bar->actionGeometry(const_cast<QAction *>(entry)).center());
}

void clickMenu(QMenu *menu, QAction *entry)
{
    const QPoint place = menu->actionGeometry(entry).center();
    // A menu takes a click only where the mouse has come to.
    QMouseEvent move(QEvent::MouseMove, place, menu->mapToGlobal(place), Qt::NoButton, Qt::NoButton,
                     Qt::NoModifier);
    QCoreApplication::sendEvent(menu, &move);
    click(menu, place);
}

} // namespace corvane
