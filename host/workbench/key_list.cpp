// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/workbench/key_list.h"

#include <QDialogButtonBox>
#include <QHeaderView>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace corvane
{

namespace
{

/// A text of a menu without what marks its letter.
QString withoutLetter(QString text)
{
    return text.remove(QLatin1Char('&'));
}

QTreeWidgetItem *addGroup(QTreeWidget *keys, const QString &name)
{
    auto *const group = new QTreeWidgetItem(keys, {name});
    group->setFirstColumnSpanned(true);
    QFont bold = keys->font();
    bold.setBold(true);
    group->setFont(0, bold);
    return group;
}

} // namespace

KeyList::KeyList(const QMenuBar &menus, QWidget *parent) : QDialog(parent), m_keys(new QTreeWidget)
{
    setObjectName(QStringLiteral("keyList"));
    setWindowTitle(tr("Keys"));
    m_keys->setAccessibleName(tr("Keys of the workbench"));
    m_keys->setHeaderLabels({tr("To"), tr("Keys")});
    m_keys->setRootIsDecorated(false);
    m_keys->setItemsExpandable(false);
    m_keys->setUniformRowHeights(true);
    addMenus(menus);
    addViews();
    m_keys->expandAll();
    m_keys->header()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
    m_keys->setCurrentItem(m_keys->topLevelItem(0));

    auto *const buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto *const column = new QVBoxLayout(this);
    column->addWidget(m_keys);
    column->addWidget(buttons);
    resize(560, 520);
}

void KeyList::addMenus(const QMenuBar &menus)
{
    for (const QAction *top : menus.actions()) {
        QTreeWidgetItem *group = nullptr;
        for (const QAction *entry : top->menu()->actions()) {
            if (entry->shortcut().isEmpty())
                continue;
            if (group == nullptr)
                group = addGroup(m_keys, tr("%1 menu").arg(withoutLetter(top->text())));
            QStringList keys;
            for (const QKeySequence &key : entry->shortcuts())
                keys += key.toString(QKeySequence::NativeText);
            new QTreeWidgetItem(group, {withoutLetter(entry->text()).remove(QStringLiteral("...")),
                                        keys.join(tr(" or "))});
        }
    }
}

void KeyList::addViews()
{
    const struct {
        QString view;
        QList<QPair<QString, QString>> keys; ///< what they do, and which they are
    } views[] = {{tr("In a slice"),
                  {{tr("Move the cross-hair"), tr("Arrow keys")},
                   {tr("Ten voxels at once"), tr("Shift+arrow keys")},
                   {tr("Go through the slices"), tr("Page Up, Page Down")},
                   {tr("Zoom"), tr("+, -")},
                   {tr("This slice alone, all three again"), tr("Return")},
                   {tr("Picture or table of the slice"), tr("Menu or Shift+F10")}}},
                 {tr("In the list of VOIs"),
                  {{tr("Choose the one whose mean course is drawn"), tr("Up, Down")},
                   {tr("Show or hide it"), tr("Space")},
                   {tr("Take the cross-hair to it"), tr("Return")}}},
                 {tr("In the time course"),
                  {{tr("Read a volume"), tr("Left, Right, Home, End")},
                   {tr("Ten volumes at once"), tr("Shift+Left, Shift+Right")},
                   {tr("Picture or table of the course"), tr("Menu or Shift+F10")}}},
                 {tr("Everywhere"),
                  {{tr("The page of the guide about the window in front"), tr("F1")},
                   {tr("The next, the previous control"), tr("Tab, Shift+Tab")},
                   {tr("The control whose letter is underlined"), tr("Alt+letter")}}}};
    for (const auto &[view, keys] : views) {
        QTreeWidgetItem *const group = addGroup(m_keys, view);
        for (const auto &[what, key] : keys)
            new QTreeWidgetItem(group, {what, key});
    }
}

} // namespace corvane
