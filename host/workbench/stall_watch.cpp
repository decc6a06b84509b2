// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/workbench/stall_watch.h"

#include <cstdio>
#include <system_error>
#include <utility>

namespace corvane
{

namespace
{

constexpr const char *line =
    "Corvane: the windows have not answered for a while; a plugin or a large file keeps them busy. "
    "They go on as soon as it is done. Ctrl-C here, or the system's means to end a program, ends "
    "it "
    "and leaves no half-written files.\n";

} // namespace

StallWatch::StallWatch()
    : StallWatch(std::chrono::seconds(10), [](const char *text) { std::fputs(text, stderr); })
{
}

StallWatch::StallWatch(std::chrono::milliseconds patience, Tell tell)
    : m_patience(patience), m_tell(std::move(tell))
{
    QObject::connect(&m_heart, &QTimer::timeout, &m_heart, [this] { beat(); });
    m_heart.start(patience / 10);
    try {
        m_watcher = std::thread(&StallWatch::watch, this);
    } catch (const std::system_error &) {
        m_heart.stop(); // no thread to be had: nobody watches
    }
}

StallWatch::~StallWatch()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_ends = true;
    }
    m_changed.notify_one();
    if (m_watcher.joinable())
        m_watcher.join();
}

void StallWatch::beat()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        ++m_beats;
    }
    m_changed.notify_one();
}

void StallWatch::watch()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    while (!m_ends) {
        const quint64 seen = m_beats;
        const auto goesOn = [&] { return m_ends || m_beats != seen; };
        if (m_changed.wait_for(lock, m_patience, goesOn))
            continue;
        m_tell(line);
        m_changed.wait(lock, goesOn);
    }
}

} // namespace corvane
