// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/housekeeping.h"

#include "host/files/end_signals.h"
#include "host/files/hidden_path.h"
#include "host/files/terminal.h"

#include <cstdio>
#include <thread>

namespace corvane
{

namespace
{

constexpr std::chrono::seconds betweenTouches(30);

/// In the line of a progress that is now over. Elsewhere the exit status tells it.
void sayInterrupted()
{
    if (standardErrorIsTerminal())
        std::fprintf(stderr, "%sCorvane: interrupted\n", terminalLineStart);
}

void keepHouse()
{
    int signal = 0;
    while ((signal = waitForEndSignal(betweenTouches)) == 0)
        touchHiddenPaths();
    removeHiddenPaths();
    sayInterrupted();
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
