// SPDX-License-Identifier: GPL-3.0-or-later
#include "statistics/parallel.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <new>
#include <system_error>
#include <thread>
#include <vector>

namespace statistics
{

int thread_count(int threads)
{
    if (threads > 0) {
        return threads;
    }
    return std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
}

void for_each_chunk(std::ptrdiff_t chunks, int threads,
                    const std::function<void(std::ptrdiff_t, int)> &work)
{
    std::atomic<std::ptrdiff_t> next{0};
    std::mutex mutex;
    std::exception_ptr failure; // guarded by mutex
    const auto run = [&](int worker) {
        try {
            for (std::ptrdiff_t chunk = next++; chunk < chunks; chunk = next++) {
                work(chunk, worker);
            }
        } catch (...) {
            next = chunks;
            const std::lock_guard<std::mutex> lock(mutex);
            if (!failure) {
                failure = std::current_exception();
            }
        }
    };

    std::vector<std::thread> others;
    const auto wanted = std::min<std::ptrdiff_t>(thread_count(threads), chunks);
    try {
        for (int worker = 1; worker < wanted; ++worker) {
            others.emplace_back(run, worker);
        }
    } catch (const std::system_error &) {
        // No further thread to be had: those that are there do the work.
    } catch (const std::bad_alloc &) {
        // Nor the memory for one.
    }
    run(0);
    for (std::thread &other : others) {
        other.join();
    }
    if (failure) {
        std::rethrow_exception(failure);
    }
}

} // namespace statistics
