// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QSet>
#include <QStringList>

#include <atomic>
#include <ctime>
#include <thread>

/// @file
/// What is found while events come in: warnings, errors that the program has caught, windows that
/// were seen, and an event loop that stands still.

namespace monkey
{

/// How many events there were so far, for what is told of one of them.
extern std::atomic<long> eventCount;

/// Notes that something is wrong and goes on; each text counts once.
void noteFinding(const QString &what);
/// All texts so far.
QStringList findings();

/// From now on warnings of Qt that are not on the list of those known to be right are findings.
void watchWarnings();

/// The classes of the windows that have been shown, and a number for each window in the order in
/// which they first were.
class WindowWatch : public QObject
{
public:
    WindowWatch();

    static int numberOf(const QWidget *window);
    const QSet<QString> &classes() const { return m_classes; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QSet<QString> m_classes;
    int m_next = 1;
};

/// Ends the process with the stack of the thread that made it when that has worked for five
/// seconds, or waited for sixty, without a beat. Time of the processor, since other programs may
/// want it, too.
class StallWatch
{
public:
    StallWatch();
    ~StallWatch();
    StallWatch(const StallWatch &) = delete;
    StallWatch &operator=(const StallWatch &) = delete;

    void beat() { ++m_beats; }
    double longest() const { return m_longest; } ///< seconds of work between two beats

private:
    void watch();

    std::atomic<long> m_beats{0};
    std::atomic<double> m_longest{0};
    std::atomic<bool> m_ends{false};
    clockid_t m_work = 0;
    pthread_t m_watched;
    std::thread m_watcher;
};

} // namespace monkey
