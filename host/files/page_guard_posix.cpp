// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/page_guard.h"

#include <array>
#include <atomic>
#include <csignal>
#include <cstdint>
#include <mutex>
#include <stdexcept>
#include <sys/mman.h>
#include <unistd.h>

namespace corvane
{

namespace
{

/// The memory of one guard. The handler of the signal reads it at any moment, in any thread, and
/// may wait for nothing: so everything is atomic, and a range is valid only while it has an end.
struct Range {
    std::atomic<bool> taken{false};
    std::atomic<std::uintptr_t> begin{0};
    std::atomic<std::uintptr_t> end{0};
    std::atomic<bool> missed{false};
};

std::array<Range, 1024> ranges;
std::uintptr_t pageSize;
struct sigaction previous;

/// Puts zeros in the place of what is missing: all from that page on, since a file ends but once.
bool fillFrom(std::uintptr_t address, std::uintptr_t end)
{
    const std::uintptr_t page = address - address % pageSize;
    // NOLINTNEXTLINE(performance-no-int-to-ptr): the signal tells an address.
    void *const place = reinterpret_cast<void *>(page);
    return mmap(place, end - page, PROT_READ | PROT_WRITE,
                MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE | MAP_FIXED, -1, 0) != MAP_FAILED;
}

/// What the process would do without guards.
void passOn(int number, siginfo_t *info, void *context)
{
    if ((previous.sa_flags & SA_SIGINFO) != 0) {
        previous.sa_sigaction(number, info, context);
    } else if (previous.sa_handler != SIG_DFL && previous.sa_handler != SIG_IGN) {
        previous.sa_handler(number);
    } else {
        // Comes when this handler returns.
        std::signal(number, SIG_DFL);
        std::raise(number);
    }
}

void handle(int number, siginfo_t *info, void *context)
{
    const auto address = reinterpret_cast<std::uintptr_t>(info->si_addr);
    const bool isOfMemory = info->si_code > 0; // and not sent by a process
    for (Range &range : ranges) {
        const std::uintptr_t end = range.end.load(std::memory_order_acquire);
        if (isOfMemory && address < end && address >= range.begin.load() &&
            fillFrom(address, end)) {
            range.missed.store(true);
            return;
        }
    }
    passOn(number, info, context);
}

void install()
{
    pageSize = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
    struct sigaction action {
    };
    action.sa_sigaction = handle;
    action.sa_flags = SA_SIGINFO | SA_RESTART;
    sigemptyset(&action.sa_mask);
    sigaction(SIGBUS, &action, &previous);
}

std::size_t takePlace()
{
    for (std::size_t place = 0; place < ranges.size(); ++place)
        if (!ranges[place].taken.exchange(true))
            return place;
    throw std::runtime_error("too many files are open at a time");
}

} // namespace

PageGuard::PageGuard(const void *begin, std::size_t length) : m_place(takePlace())
{
    static std::once_flag once;
    std::call_once(once, install);
    Range &range = ranges[m_place];
    const auto address = reinterpret_cast<std::uintptr_t>(begin);
    range.missed.store(false);
    range.begin.store(address);
    range.end.store((address + length + pageSize - 1) / pageSize * pageSize,
                    std::memory_order_release);
}

PageGuard::~PageGuard()
{
    Range &range = ranges[m_place];
    range.end.store(0);
    range.taken.store(false);
}

bool PageGuard::wasMissed() const
{
    return ranges[m_place].missed.load();
}

} // namespace corvane
