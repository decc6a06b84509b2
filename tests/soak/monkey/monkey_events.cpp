// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/soak/monkey/monkey_events.h"

#include "tests/host/workbench/dropping.h"
#include "tests/soak/monkey/monkey_watch.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QLineEdit>
#include <QMainWindow>
#include <QProgressDialog>
#include <QTest>
#include <QWheelEvent>
#include <QWindow>

#include <algorithm>
#include <vector>

namespace monkey
{

namespace
{

const std::vector<int> keys = {Qt::Key_Tab,    Qt::Key_Backtab,  Qt::Key_Return, Qt::Key_Enter,
                               Qt::Key_Escape, Qt::Key_Space,    Qt::Key_Up,     Qt::Key_Down,
                               Qt::Key_Left,   Qt::Key_Right,    Qt::Key_Home,   Qt::Key_End,
                               Qt::Key_PageUp, Qt::Key_PageDown, Qt::Key_Delete, Qt::Key_Plus,
                               Qt::Key_Minus,  Qt::Key_F1,       Qt::Key_F2,     Qt::Key_F4,
                               Qt::Key_F5,     Qt::Key_F11,      Qt::Key_Menu,   Qt::Key_Backspace};

const QStringList texts = {"0",
                           "1",
                           "-1",
                           "0.5",
                           "1e309",
                           "nan",
                           "999999999999",
                           "a",
                           "sub-01",
                           "~ group + age",
                           "<b>&amp;</b>",
                           "=cmd()",
                           "%1 %n \\",
                           "\t",
                           QString::fromUtf8("äß海🧠"),
                           QString::fromUtf8("\u202Eabc\u0301"),
                           QString(300, 'x'),
                           "--help",
                           "'\"; ls"};

/// The widgets below one, in the order in which they were made.
QList<QWidget *> partsOf(const QWidget *widget)
{
    QList<QWidget *> parts;
    for (QObject *child : widget->children())
        if (child->isWidgetType() && !static_cast<QWidget *>(child)->isWindow())
            parts += static_cast<QWidget *>(child);
    return parts;
}

QString pathOf(const QWidget *widget)
{
    QStringList places;
    for (; !widget->isWindow() && widget->parentWidget() != nullptr;
         widget = widget->parentWidget())
        places.prepend(QString::number(
            partsOf(widget->parentWidget()).indexOf(const_cast<QWidget *>(widget))));
    return places.join('.');
}

QWidget *atPath(QWidget *window, const QString &path)
{
    QWidget *widget = window;
    for (const QString &place : path.split('.', Qt::SkipEmptyParts)) {
        widget = partsOf(widget).value(place.toInt());
        if (widget == nullptr)
            return nullptr;
    }
    return widget;
}

QString classOf(const QWidget *window)
{
    return QString::fromLatin1(window->metaObject()->className());
}

QList<QWidget *> visibleWindows()
{
    QList<QWidget *> windows;
    for (QWidget *window : QApplication::topLevelWidgets())
        if (window->isVisible() && window->windowHandle() != nullptr &&
            window->windowType() != Qt::ToolTip) // which comes and goes with time
            windows += window;
    std::sort(windows.begin(), windows.end(), [](QWidget *a, QWidget *b) {
        return WindowWatch::numberOf(a) < WindowWatch::numberOf(b);
    });
    return windows;
}

QString nameOf(const QWidget *window)
{
    int place = 0;
    for (const QWidget *other : visibleWindows()) {
        if (other == window)
            return QStringLiteral("%1#%2").arg(classOf(window)).arg(place);
        place += classOf(other) == classOf(window) ? 1 : 0;
    }
    return {};
}

QWidget *windowOf(const QString &name)
{
    for (QWidget *window : visibleWindows())
        if (nameOf(window) == name)
            return window;
    return nullptr;
}

Event eventFor(Kind kind, const QWidget *widget)
{
    Event event;
    event.kind = kind;
    event.window = nameOf(widget->window());
    event.path = pathOf(widget);
    return event;
}

const QStringList &kindNames()
{
    static const QStringList names = {"click",  "double", "drag", "wheel", "move",
                                      "key",    "text",   "path", "drop",  "focus",
                                      "action", "resize", "close"};
    return names;
}

const Qt::MouseButton buttons[] = {Qt::LeftButton, Qt::RightButton, Qt::MiddleButton};

// ---- doing it: a window that a press has closed, maybe much later, gets no release

void click(const QPointer<QWindow> &window, Qt::MouseButton button, Qt::KeyboardModifiers modifiers,
           const QPoint &place)
{
    QTest::mousePress(window, button, modifiers, place);
    if (window)
        QTest::mouseRelease(window, button, modifiers, place);
}

void doubleClick(const QPointer<QWidget> &widget, Qt::MouseButton button,
                 Qt::KeyboardModifiers modifiers, const QPoint &place)
{
    click(widget->window()->windowHandle(), button, modifiers,
          widget->mapTo(widget->window(), place));
    for (const QEvent::Type type : {QEvent::MouseButtonDblClick, QEvent::MouseButtonRelease}) {
        if (!widget)
            return;
        const bool isRelease = type == QEvent::MouseButtonRelease;
        QMouseEvent event(type, place, widget->mapToGlobal(place), button,
                          isRelease ? Qt::NoButton : button, modifiers);
        QApplication::sendEvent(widget, &event);
    }
}

/// QTest would send the second part to a window that the first has closed.
void sendKey(const QPointer<QWindow> &window, QEvent::Type type, int key,
             Qt::KeyboardModifiers modifiers, const QString &text = {})
{
    if (!window)
        return;
    qt_handleKeyEvent(window, type, key, modifiers, text);
    QCoreApplication::processEvents();
}

void pressKey(const QPointer<QWindow> &window, Qt::Key key, Qt::KeyboardModifiers modifiers)
{
    const int modifier = modifiers == Qt::ShiftModifier     ? Qt::Key_Shift
                         : modifiers == Qt::ControlModifier ? Qt::Key_Control
                                                            : Qt::Key_Alt;
    const char letter = QTest::keyToAscii(key);
    const QString text = letter != 0 ? QString(QLatin1Char(letter)) : QString();
    if (modifiers != Qt::NoModifier)
        sendKey(window, QEvent::KeyPress, modifier, Qt::NoModifier);
    sendKey(window, QEvent::KeyPress, key, modifiers, text);
    sendKey(window, QEvent::KeyRelease, key, modifiers, text);
    if (modifiers != Qt::NoModifier)
        sendKey(window, QEvent::KeyRelease, modifier, modifiers);
}

void type(const QPointer<QWindow> &window, const QString &text)
{
    for (const QChar letter : text)
        for (const QEvent::Type way : {QEvent::KeyPress, QEvent::KeyRelease})
            sendKey(window, way, Qt::Key_unknown, Qt::NoModifier, QString(letter));
}

void drag(QWindow *window, const QPoint &from, const QPoint &way, const Event &event)
{
    const QPointer<QWindow> guarded = window;
    const auto modifiers = Qt::KeyboardModifiers(event.text.toInt());
    QTest::mousePress(window, Qt::LeftButton, modifiers, from);
    for (int step = 1; step <= 4 && guarded; ++step)
        QTest::mouseMove(window, from + way * step / 4);
    if (guarded)
        QTest::mouseRelease(window, Qt::LeftButton, modifiers, from + way);
}

void wheel(QWidget *widget, const QPoint &place, const Event &event)
{
    QWheelEvent turn(place, widget->mapToGlobal(place), {}, QPoint(event.d, event.c), Qt::NoButton,
                     Qt::KeyboardModifiers(event.text.toInt()), Qt::NoScrollPhase, false);
    QApplication::sendEvent(widget, &turn);
}

void namePath(QWidget *window, const QString &path)
{
    auto *const dialog = qobject_cast<QFileDialog *>(window);
    auto *const name = dialog != nullptr
                           ? dialog->findChild<QLineEdit *>(QStringLiteral("fileNameEdit"))
                           : nullptr;
    if (name == nullptr)
        return;
    name->setText(QDir::current().filePath(path));
    pressKey(window->windowHandle(), Qt::Key_Return, Qt::NoModifier);
}

void trigger(const QWidget *window, const QString &text)
{
    for (QAction *action : window->findChildren<QAction *>())
        if (action->text() == text && action->isEnabled()) {
            action->trigger();
            return;
        }
}

bool performMouse(const Event &event, QWidget *widget)
{
    QWindow *const window = widget->window()->windowHandle();
    const QPoint place = widget->mapTo(widget->window(), QPoint(event.a, event.b));
    const auto modifiers = Qt::KeyboardModifiers(event.c);
    const Qt::MouseButton button = buttons[std::clamp(event.d, 0, 2)];
    switch (event.kind) {
    case Kind::Click:
        click(window, button, modifiers, place);
        return true;
    case Kind::DoubleClick:
        doubleClick(widget, button, modifiers, QPoint(event.a, event.b));
        return true;
    case Kind::Drag:
        drag(window, place, QPoint(event.c, event.d), event);
        return true;
    case Kind::Wheel:
        wheel(widget, QPoint(event.a, event.b), event);
        return true;
    case Kind::Move:
        QTest::mouseMove(window, place);
        return true;
    default:
        return false;
    }
}

} // namespace

QString Event::line() const
{
    return QStringList{kindNames().at(int(kind)),
                       window,
                       path,
                       QString::number(a),
                       QString::number(b),
                       QString::number(c),
                       QString::number(d),
                       QString::fromLatin1(text.toUtf8().toHex())}
        .join('\t');
}

std::optional<Event> Event::ofLine(const QString &line)
{
    const QStringList parts = line.split('\t');
    const int kind = kindNames().indexOf(parts.first());
    if (parts.size() != 8 || kind < 0)
        return {};
    return Event{Kind(kind),       parts[1],
                 parts[2],         parts[3].toInt(),
                 parts[4].toInt(), parts[5].toInt(),
                 parts[6].toInt(), QString::fromUtf8(QByteArray::fromHex(parts[7].toLatin1()))};
}

QList<QWidget *> reachableWindows()
{
    if (QWidget *const popup = QApplication::activePopupWidget())
        return {popup};
    if (QWidget *const modal = QApplication::activeModalWidget())
        if (modal->isVisible() && modal->windowHandle() != nullptr)
            return {modal};
    return visibleWindows();
}

QString shownWindows()
{
    QStringList shown;
    for (const QWidget *window : visibleWindows())
        shown += nameOf(window) + QLatin1Char(' ') + window->windowTitle().simplified();
    return shown.join(QStringLiteral("; "));
}

// ---- drawing one

QWidget *EventSource::window()
{
    // Sometimes a window that a popup or a modal dialog keeps from being reached.
    const QList<QWidget *> windows = pick(30) == 0 ? visibleWindows() : reachableWindows();
    return windows.isEmpty() ? nullptr : one(windows);
}

QWidget *EventSource::widgetOf(QWidget *window)
{
    QList<QWidget *> widgets = {window};
    for (QWidget *widget : window->findChildren<QWidget *>())
        if (widget->window() == window && widget->isVisible() && !widget->visibleRegion().isEmpty())
            widgets += widget;
    return one(widgets);
}

Event EventSource::mouse(QWidget *window)
{
    static const std::vector<Kind> kinds = {Kind::Click, Kind::Click, Kind::Click,
                                            Kind::Click, Kind::Click, Kind::DoubleClick,
                                            Kind::Drag,  Kind::Wheel, Kind::Move};
    const QWidget *const widget = widgetOf(window);
    Event event = eventFor(one(kinds), widget);
    const QRect seen = widget->visibleRegion().boundingRect();
    const QPoint place = pick(3) == 0 ? seen.center()
                                      : seen.topLeft() + QPoint(pick(std::max(1, seen.width())),
                                                                pick(std::max(1, seen.height())));
    event.a = place.x();
    event.b = place.y();
    static const std::vector<int> modifiers = {Qt::ShiftModifier, Qt::ControlModifier,
                                               Qt::AltModifier};
    const int modifier = pick(10) == 0 ? one(modifiers) : 0;
    if (event.kind == Kind::Drag || event.kind == Kind::Wheel) {
        event.text = QString::number(modifier);
        event.c = (pick(9) - 4) * (event.kind == Kind::Wheel ? 120 : 60);
        event.d = event.kind == Kind::Wheel ? 0 : (pick(9) - 4) * 60;
    } else {
        event.c = modifier;
        event.d = pick(8) == 0 ? 1 : pick(40) == 0 ? 2 : 0;
    }
    return event;
}

Event EventSource::key(QWidget *window)
{
    Event event = eventFor(Kind::Key, window);
    if (pick(4) == 0) {
        event.kind = Kind::Text;
        event.text = one(texts);
        return event;
    }
    const int letter = Qt::Key_A + pick(26);
    const int digit = Qt::Key_0 + pick(10);
    switch (pick(6)) {
    case 0:
        event.a = letter;
        event.c = Qt::ControlModifier;
        break;
    case 1:
        event.a = letter;
        event.c = Qt::AltModifier;
        break;
    case 2:
        event.a = pick(2) == 0 ? letter : digit;
        break;
    default:
        event.a = one(keys);
        event.c = pick(5) == 0 ? int(Qt::ShiftModifier) : 0;
    }
    return event;
}

Event EventSource::inDialogOfFiles(QWidget *window)
{
    Event event = eventFor(Kind::Path, window);
    event.text = pick(3) == 0 ? QStringLiteral("export%1").arg(pick(20)) : one(m_files);
    return event;
}

Event EventSource::other(QWidget *window)
{
    switch (pick(12)) {
    case 0: {
        Event event = eventFor(Kind::Drop, widgetOf(window));
        QStringList files;
        for (int n = pick(3); n >= 0; --n)
            files += one(m_files);
        event.text = files.join('\n');
        return event;
    }
    case 1:
    case 2:
    case 3: {
        Event event = eventFor(Kind::Action, window);
        QStringList names;
        for (const QAction *action : window->findChildren<QAction *>())
            if (action->isEnabled() && !action->isSeparator() && !action->text().isEmpty())
                names += action->text();
        event.text = names.isEmpty() ? QString() : one(names);
        return event;
    }
    case 4:
    case 5: {
        Event event = eventFor(Kind::Resize, window);
        event.a = 30 + pick(1500);
        event.b = 30 + pick(1100);
        return event;
    }
    case 6:
        // The main window ends everything: not so often.
        if (qobject_cast<QMainWindow *>(window) == nullptr || pick(8) == 0)
            return eventFor(Kind::Close, window);
        [[fallthrough]];
    default:
        return eventFor(Kind::Focus, widgetOf(window));
    }
}

std::optional<Event> EventSource::next()
{
    QWidget *const target = window();
    if (target == nullptr)
        return {};
    const bool asksForFile = qobject_cast<QFileDialog *>(target) != nullptr;
    if (asksForFile && pick(3) == 0)
        return inDialogOfFiles(target);
    const int kind = pick(asksForFile ? 90 : 100); // its actions are Qt's own affair
    return kind < 65 ? mouse(target) : kind < 90 ? key(target) : other(target);
}

QString sightOf(const Event &event)
{
    QWidget *const window = windowOf(event.window);
    const QWidget *const widget = window == nullptr ? nullptr : atPath(window, event.path);
    if (widget == nullptr)
        return {};
    QStringList reachable;
    for (const QWidget *one : reachableWindows())
        reachable += nameOf(one);
    QStringList parts;
    for (const QWidget *part = widget; part != nullptr; part = part->parentWidget())
        parts += classOf(part);
    return QStringList{shownWindows(), reachable.join(' '), parts.join('<'),
                       widget->isVisible() ? "visible" : "hidden"}
               .join(QStringLiteral(" | ")) +
           (widget->isEnabled() ? QString() : QString(toDisabled));
}

bool goesToWork(const Event &event)
{
    return event.window.startsWith(QLatin1String(QProgressDialog::staticMetaObject.className()));
}

bool perform(const Event &event)
{
    const QPointer<QWidget> window = windowOf(event.window);
    QWidget *const widget = window.isNull() ? nullptr : atPath(window, event.path);
    if (widget == nullptr)
        return false;
    switch (event.kind) {
    case Kind::Key:
        pressKey(window->windowHandle(), Qt::Key(event.a), Qt::KeyboardModifiers(event.c));
        return true;
    case Kind::Text:
        type(window->windowHandle(), event.text);
        return true;
    case Kind::Path:
        namePath(window, event.text);
        return true;
    case Kind::Drop:
        corvane::dropOn(widget, event.text.split('\n'));
        return true;
    case Kind::Focus:
        window->activateWindow();
        widget->setFocus();
        return true;
    case Kind::Action:
        trigger(window, event.text);
        return true;
    case Kind::Resize:
        window->resize(event.a, event.b);
        return true;
    case Kind::Close:
        window->close();
        return true;
    default:
        return performMouse(event, widget);
    }
}

} // namespace monkey
