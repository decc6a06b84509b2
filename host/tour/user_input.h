// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QPoint>
#include <QString>

class QAbstractItemView;
class QAction;
class QListWidget;
class QMenu;
class QMenuBar;
class QTabBar;
class QWidget;

/// @file
/// Clicks and keys as a user makes them, for the guided tour. They end in the widgets' own event
/// handlers and start whatever these start; a call returns when that has ended, which for a modal
/// dialog is when it is closed.

namespace corvane
{

void click(QWidget *widget, const QPoint &place);
void click(QWidget *widget); ///< in its middle; a check box or radio button on its mark
void doubleClick(QWidget *widget, const QPoint &place);
void pressKey(QWidget *widget, int key);
/// Puts a text in the place of what a line edit or spin box holds.
void enterText(QWidget *widget, const QString &text);

void clickItem(QAbstractItemView *view, int row, int column = 0);
void doubleClickItem(QAbstractItemView *view, int row, int column = 0);
void clickTab(QTabBar *tabs, int index);
/// Opens the menu of a menu bar, or triggers an entry of an open menu.
void clickMenu(QMenuBar *bar, const QAction *entry);
void clickMenu(QMenu *menu, QAction *entry);

} // namespace corvane
