// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

#include <optional>
#include <random>

class QWidget;

/// @file
/// Single events of a user without a plan, as text so that they can be kept and played again.

namespace monkey
{

enum class Kind {
    Click,
    DoubleClick,
    Drag,
    Wheel,
    Move,
    Key,
    Text,
    Path,
    Drop,
    Focus,
    Action,
    Resize,
    Close
};

/// An event and what it goes to: a window by its class and its place among the visible ones of that
/// class, and a widget in it by the places of its ancestors among their siblings.
struct Event {
    Kind kind = Kind::Move;
    QString window;
    QString path;
    int a = 0; ///< x in the widget, a key, or a number
    int b = 0; ///< y in the widget
    int c = 0; ///< how far to the right, or modifiers
    int d = 0; ///< how far down, or the button
    QString text;

    QString line() const;
    static std::optional<Event> ofLine(const QString &line);
};

/// What a user can reach now: the popup, the modal dialog, or all windows.
QList<QWidget *> reachableWindows();

/// The windows that are to be seen, with their titles.
QString shownWindows();

/// Draws the next event from what is to be seen. `files` are those to be dropped and named.
class EventSource
{
public:
    EventSource(quint64 seed, QStringList files) : m_random(seed), m_files(std::move(files)) {}

    std::optional<Event> next();
    int pick(int count) { return int(m_random() % quint64(count)); }

private:
    QWidget *window();
    QWidget *widgetOf(QWidget *window);
    Event mouse(QWidget *window);
    Event key(QWidget *window);
    Event inDialogOfFiles(QWidget *window);
    Event other(QWidget *window);
    template <typename List>
    auto one(const List &list)
    {
        return list[pick(int(list.size()))];
    }

    std::mt19937_64 m_random;
    QStringList m_files;
};

/// What a user sees before the event, in one line: the windows, which of them can be reached, and
/// what it goes to, with whether that is to be seen and enabled. Empty when that is not there.
QString sightOf(const Event &event);

/// How a sight ends when the event goes to something disabled, which does not take it.
const QLatin1String toDisabled(" | disabled");

/// Whether it goes to a window that is there only as long as something is at work.
bool goesToWork(const Event &event);

/// Does it. False when there is nothing that it could go to.
bool perform(const Event &event);

} // namespace monkey
