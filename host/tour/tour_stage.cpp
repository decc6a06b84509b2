// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/tour/tour_stage.h"

#include "host/workbench/screen_fit.h"

#include <QApplication>
#include <QMainWindow>
#include <QScreen>
#include <algorithm>

namespace corvane
{

namespace
{

bool belongsTo(const QWidget *window, const QWidget *owner)
{
    for (; window != nullptr; window = window->parentWidget())
        if (window->window() == owner)
            return true;
    return false;
}

/// The windows that stand on the stage, that of the front first and the workbench last, which can
/// be of any width.
QWidgetList windowsBehind(QWidget *front)
{
    QWidgetList windows;
    for (QWidget *window : QApplication::topLevelWidgets()) {
        const bool isWindow =
            window->windowType() == Qt::Window || window->windowType() == Qt::Dialog;
        if (isWindow && window->isVisible() && window != front)
            windows += window;
    }
    const auto rank = [front](const QWidget *window) {
        if (belongsTo(front, window))
            return 0;
        return window->inherits("corvane::MainWindow") ? 2 : 1;
    };
    std::stable_sort(windows.begin(), windows.end(),
                     [&](QWidget *left, QWidget *right) { return rank(left) < rank(right); });
    return windows;
}

StageWindow needsOf(const QWidget &window)
{
    const QSize least = window.minimumSizeHint().expandedTo(window.minimumSize());
    const QSize wanted = window.inherits("corvane::MainWindow") ? QSize(1100, 850) : window.size();
    return {wanted.expandedTo(least), least, frameOf(window)};
}

/// Width that the windows behind one need which cannot be put away.
int neededBehind(const std::vector<StageWindow> &windows, std::size_t n)
{
    int width = 0;
    for (++n; n < windows.size(); ++n)
        if (windows[n].isNeeded)
            width += windows[n].least.width() + windows[n].frame.left() + windows[n].frame.right();
    return width;
}

} // namespace

Stage stageOf(const QRect &screen)
{
    const int column = qBound(240, screen.width() / 4, 400);
    QRect windows = screen;
    windows.setRight(screen.right() - column);
    QRect card = screen;
    card.setLeft(windows.right() + 1);
    return {windows, card};
}

std::vector<std::optional<QRect>> placesOn(const QRect &stage,
                                           const std::vector<StageWindow> &windows)
{
    std::vector<std::optional<QRect>> places;
    QRect left = stage;
    for (std::size_t n = 0; n < windows.size(); ++n) {
        const StageWindow &window = windows[n];
        const QSize room = left.marginsRemoved(window.frame).size();
        // One that is a little too high is still seen better than one that is away.
        const bool hasRoom =
            room.width() >= window.least.width() && room.height() >= 0.8 * window.least.height();
        if (n > 0 && !hasRoom) {
            places.emplace_back();
            continue;
        }
        int width = std::min(window.wanted.width(), room.width());
        // What matters more is not squeezed for what is behind it.
        const int beside = std::min(width, room.width() - neededBehind(windows, n));
        if (beside >= 0.9 * width)
            width = beside;
        if (n > 0 && n + 1 == windows.size())
            width = room.width();
        const int height = std::min(window.wanted.height(), room.height());
        QRect place(QPoint(0, 0), QSize(width, height).expandedTo(window.least));
        place.moveRight(left.right() - window.frame.right());
        place.moveTop(left.top() + window.frame.top());
        // What is wider than the stage begins where the stage does.
        place.moveLeft(std::max(place.left(), stage.left() + window.frame.left()));
        places.emplace_back(place);
        left.setRight(place.left() - window.frame.left() - 1);
    }
    return places;
}

void arrangeWindows(QWidget *front)
{
    QWidgetList windows = windowsBehind(front);
    windows.prepend(front);
    std::vector<StageWindow> needs;
    for (const QWidget *window : qAsConst(windows)) {
        needs.push_back(needsOf(*window));
        needs.back().isNeeded = belongsTo(front, window);
    }
    const QRect stage = stageOf(front->screen()->availableGeometry()).windows;
    const std::vector<std::optional<QRect>> places = placesOn(stage, needs);
    for (int n = 0; n < windows.size(); ++n) {
        QWidget *const window = windows[n];
        const std::optional<QRect> &place = places[static_cast<std::size_t>(n)];
        const Qt::WindowStates fixed =
            Qt::WindowMinimized | Qt::WindowMaximized | Qt::WindowFullScreen;
        if (place) {
            if (window->windowState() & fixed)
                window->setWindowState(window->windowState() & ~fixed);
            window->setGeometry(*place);
        } else if (!belongsTo(front, window)) {
            window->setWindowState(window->windowState() | Qt::WindowMinimized);
        }
    }
    front->raise();
    front->activateWindow();
}

} // namespace corvane
