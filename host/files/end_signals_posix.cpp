// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/end_signals.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <system_error>
#include <unistd.h>

namespace corvane
{

namespace
{

std::atomic<int> signalThatCame{0};
std::array<int, 2> wake{-1, -1}; ///< a pipe: its reader waits, the handler writes

static_assert(std::atomic<int>::is_always_lock_free, "it is written in a handler");

void keep(int number)
{
    const int error = errno;
    int none = 0;
    if (signalThatCame.compare_exchange_strong(none, number))
        (void)!write(wake[1], "", 1);
    errno = error;
}

} // namespace

void catchEndSignals()
{
    if (pipe2(wake.data(), O_CLOEXEC | O_NONBLOCK) != 0)
        throw std::system_error(errno, std::generic_category(), "a pipe for signals");
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction action {
        };
        sigaction(number, nullptr, &action);
        if ((action.sa_flags & SA_SIGINFO) == 0 && action.sa_handler == SIG_IGN)
            continue;
        action = {};
        action.sa_handler = keep;
        action.sa_flags = SA_RESTART;
        sigemptyset(&action.sa_mask);
        sigaction(number, &action, nullptr);
    }
}

int waitForEndSignal(std::chrono::milliseconds time)
{
    pollfd reader{wake[0], POLLIN, 0};
    poll(&reader, 1, static_cast<int>(time.count()));
    return signalThatCame.load();
}

bool endSignalHasCome()
{
    return signalThatCame.load() != 0;
}

void endBySignal(int number)
{
    std::signal(number, SIG_DFL);
    sigset_t only;
    sigemptyset(&only);
    sigaddset(&only, number);
    pthread_sigmask(SIG_UNBLOCK, &only, nullptr);
    kill(getpid(), number);
    for (;;)
        pause();
}

} // namespace corvane
