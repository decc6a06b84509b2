// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/soak/monkey/monkey_watch.h"

#include "tests/allowed_warnings.h"

#include <QApplication>
#include <QEvent>
#include <QMutex>
#include <QWidget>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <execinfo.h>
#include <unistd.h>

extern "C" __attribute__((weak)) void __sanitizer_print_stack_trace();

namespace monkey
{

namespace
{

constexpr double longestWork = 5;
constexpr double longestWait = 60;
constexpr const char *numberProperty = "monkeyNumber";

QMutex findingsMutex;
QStringList allFindings;

void takeMessage(QtMsgType type, const QMessageLogContext &, const QString &text)
{
    if (type == QtFatalMsg) {
        std::fprintf(stderr, "%s\n", qPrintable(text));
        std::abort();
    }
    if (type != QtDebugMsg && type != QtInfoMsg && !isAllowedWarning(text))
        noteFinding(QStringLiteral("warning: ") + text);
}

/// On the thread that stands still.
void printStack(int)
{
    if (__sanitizer_print_stack_trace != nullptr) {
        __sanitizer_print_stack_trace();
    } else {
        void *frames[100];
        backtrace_symbols_fd(frames, backtrace(frames, 100), STDERR_FILENO);
    }
    _exit(3);
}

double secondsOf(clockid_t clock)
{
    timespec time{};
    clock_gettime(clock, &time);
    return double(time.tv_sec) + double(time.tv_nsec) * 1e-9;
}

} // namespace

std::atomic<long> eventCount{0};

void noteFinding(const QString &what)
{
    const QMutexLocker lock(&findingsMutex);
    if (allFindings.contains(what))
        return;
    allFindings += what;
    std::fprintf(stderr, "FOUND at event %ld: %s\n", eventCount.load(), qPrintable(what));
}

QStringList findings()
{
    const QMutexLocker lock(&findingsMutex);
    return allFindings;
}

void watchWarnings()
{
    qInstallMessageHandler(takeMessage);
}

WindowWatch::WindowWatch()
{
    qApp->installEventFilter(this);
}

int WindowWatch::numberOf(const QWidget *window)
{
    return window->property(numberProperty).toInt();
}

bool WindowWatch::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::Show || !watched->isWidgetType())
        return false;
    auto *const window = static_cast<QWidget *>(watched);
    if (!window->isWindow())
        return false;
    if (numberOf(window) == 0)
        window->setProperty(numberProperty, m_next++);
    m_classes += QString::fromLatin1(window->metaObject()->className());
    return false;
}

StallWatch::StallWatch() : m_watched(pthread_self())
{
    pthread_getcpuclockid(m_watched, &m_work);
    std::signal(SIGUSR1, printStack);
    m_watcher = std::thread(&StallWatch::watch, this);
}

StallWatch::~StallWatch()
{
    m_ends = true;
    m_watcher.join();
}

void StallWatch::watch()
{
    long beats = -1;
    double work = 0;
    double time = 0;
    while (!m_ends) {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        if (m_beats != beats) {
            beats = m_beats;
            work = secondsOf(m_work);
            time = secondsOf(CLOCK_MONOTONIC);
        }
        const double worked = secondsOf(m_work) - work;
        m_longest = std::max(m_longest.load(), worked);
        if (worked < longestWork && secondsOf(CLOCK_MONOTONIC) - time < longestWait)
            continue;
        std::fprintf(stderr, "FOUND at event %ld: the event loop stands still, %.1f s of work\n",
                     eventCount.load(), worked);
        pthread_kill(m_watched, SIGUSR1);
        std::this_thread::sleep_for(std::chrono::seconds(20)); // printStack ends the process
    }
}

} // namespace monkey
