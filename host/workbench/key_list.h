// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>

class QMenuBar;
class QTreeWidget;

namespace corvane
{

/// All keys of the workbench: those of its menus, as they are, and those of its views.
class KeyList : public QDialog
{
    Q_OBJECT

public:
    KeyList(const QMenuBar &menus, QWidget *parent);

private:
    void addMenus(const QMenuBar &menus);
    void addViews();

    QTreeWidget *m_keys;
};

} // namespace corvane
