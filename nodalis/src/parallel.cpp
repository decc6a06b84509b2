// SPDX-License-Identifier: GPL-3.0-or-later
#include "parallel.h"

#include <algorithm>
#include <atomic>
#include <future>
#include <thread>
#include <vector>

namespace nodalis::detail
{

void for_each_index(std::size_t count, int threads,
                    const std::function<void(std::size_t index)> &work)
{
    std::atomic<std::size_t> next{0};
    const auto run = [&] {
        try {
            for (std::size_t index = next++; index < count; index = next++) {
                work(index);
            }
        } catch (...) {
            next = count;
            throw;
        }
    };
    const std::size_t wanted =
        threads > 0 ? static_cast<std::size_t>(threads)
                    : std::max(std::size_t{1}, std::size_t{std::thread::hardware_concurrency()});
    std::vector<std::future<void>> others;
    for (std::size_t other = 1; other < std::min(wanted, count); ++other) {
        // Where no thread is to be had it runs later in this one, and finds nothing left.
        others.push_back(std::async(run));
    }
    run();
    for (std::future<void> &other : others) {
        other.get();
    }
}

void Report::add(double part)
{
    if (!m_effort.progress) {
        return;
    }
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_done += part;
    if (!m_effort.progress(std::min(m_done / m_all, 1.0))) {
        throw Ended();
    }
}

} // namespace nodalis::detail
