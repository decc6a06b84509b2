// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/housekeeping.h"

#include "host/files/end_signals.h"
#include "host/files/hidden_path.h"

#include <thread>

namespace corvane
{

namespace
{

constexpr std::chrono::seconds betweenTouches(30);

void keepHouse()
{
    int signal = 0;
    while ((signal = waitForEndSignal(betweenTouches)) == 0)
        touchHiddenPaths();
    removeHiddenPaths();
    endBySignal(signal);
}

} // namespace

void startHousekeeping()
{
    catchEndSignals();
    std::thread(keepHouse).detach();
}

void waitIfEnding()
{
    while (endSignalHasCome())
        std::this_thread::sleep_for(std::chrono::hours(1));
}

} // namespace corvane
