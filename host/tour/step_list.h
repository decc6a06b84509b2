// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/tour/tour.h"

class QAction;
class QMenu;
class QMenuBar;

/// @file
/// What parts of the guided tour are made of: how windows and their controls are found, and the
/// steps that all parts have.

namespace corvane
{

/// A visible window of a class, by the name of the class; the newest one.
QWidget *windowOf(const char *className);

/// A visible widget of a window by its name.
QWidget *part(const char *windowClass, const char *name);

/// The entry of a menu that begins with that text, null without.
QAction *entry(const QList<QAction *> &actions, const QString &text);

/// The menu that is open, null without.
QMenu *openedMenu();

/// Steps in their order. What they ask for is found when they are played.
class StepList
{
public:
    using Find = std::function<QWidget *()>;
    using Act = std::function<void(QWidget *)>;

    /// Something that is done.
    void act(Find target, Act action);
    /// A picture with a caption, and then perhaps something that is done.
    void picture(const char *file, const char *title, const char *caption, Find target,
                 Act action = {});
    /// Opens a menu of the window with that menu bar.
    void openMenu(std::function<QMenuBar *()> bar, const char *menu);
    /// Chooses an entry of the menu that is open, by its beginning.
    void chooseEntry(const char *text);
    void closeWindow(const char *windowClass);

    std::vector<TourStep> take() { return std::move(m_steps); }

private:
    std::vector<TourStep> m_steps;
};

/// Finds a visible widget of a window by its name.
StepList::Find inWindow(const char *windowClass, const char *name);

} // namespace corvane
