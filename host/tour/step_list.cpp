// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/tour/step_list.h"

#include "host/tour/user_input.h"

#include <QApplication>
#include <QMenu>
#include <QMenuBar>

namespace corvane
{

QWidget *windowOf(const char *className)
{
    QWidget *found = nullptr;
    for (QWidget *window : QApplication::topLevelWidgets())
        if (window->isVisible() && window->inherits(className))
            found = window;
    return found;
}

QWidget *part(const char *windowClass, const char *name)
{
    const QWidget *const window = windowOf(windowClass);
    auto *const found =
        window != nullptr ? window->findChild<QWidget *>(QString::fromLatin1(name)) : nullptr;
    return found != nullptr && found->isVisible() ? found : nullptr;
}

QAction *entry(const QList<QAction *> &actions, const QString &text)
{
    for (QAction *action : actions)
        if (action->text().remove(QLatin1Char('&')).startsWith(text))
            return action;
    return nullptr;
}

QMenu *openedMenu()
{
    return qobject_cast<QMenu *>(QApplication::activePopupWidget());
}

void StepList::act(Find target, Act action)
{
    m_steps.push_back({{}, {}, {}, std::move(target), std::move(action)});
}

void StepList::picture(const char *file, const char *title, const char *caption, Find target,
                       Act action)
{
    m_steps.push_back({QString::fromLatin1(file), Tour::tr(title), Tour::tr(caption),
                       std::move(target), std::move(action)});
}

void StepList::openMenu(std::function<QMenuBar *()> bar, const char *menu)
{
    const QString text = QString::fromLatin1(menu);
    act([bar = std::move(bar)]() -> QWidget * { return bar(); },
        [text](QWidget *found) {
            auto *const menus = qobject_cast<QMenuBar *>(found);
            clickMenu(menus, entry(menus->actions(), text));
        });
}

void StepList::chooseEntry(const char *text)
{
    const QString start = QString::fromUtf8(text);
    act(
        [start]() -> QWidget * {
            QMenu *const menu = openedMenu();
            return menu != nullptr && entry(menu->actions(), start) != nullptr ? menu : nullptr;
        },
        [start](QWidget *menu) {
            clickMenu(qobject_cast<QMenu *>(menu), entry(menu->actions(), start));
        });
}

void StepList::closeWindow(const char *windowClass)
{
    act([=] { return windowOf(windowClass); }, [](QWidget *window) { window->close(); });
}

StepList::Find inWindow(const char *windowClass, const char *name)
{
    return [=] { return part(windowClass, name); };
}

} // namespace corvane
