// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QTimer>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

/// @file
/// What the host can do about a plugin that does not come back. It is called on the thread of the
/// windows and nobody can take it away from there; that the program is not lost, and how to end it,
/// can be told.

namespace corvane
{

/// Tells, while it lives, when the thread that made it has answered no event for a while: once, and
/// anew when it has answered since.
class StallWatch
{
public:
    using Tell = std::function<void(const char *line)>; ///< called on another thread

    /// Tells on standard error after ten seconds.
    StallWatch();
    StallWatch(std::chrono::milliseconds patience, Tell tell);
    ~StallWatch();
    StallWatch(const StallWatch &) = delete;
    StallWatch &operator=(const StallWatch &) = delete;

private:
    void beat();
    void watch();

    const std::chrono::milliseconds m_patience;
    const Tell m_tell;
    QTimer m_heart;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    quint64 m_beats = 0;
    bool m_ends = false;
    std::thread m_watcher;
};

} // namespace corvane
