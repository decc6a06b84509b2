// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/end_signals.h"

#include <atomic>
#include <windows.h>

namespace corvane
{

namespace
{

std::atomic<int> eventThatCame{0}; ///< the console's number and 1, as Ctrl-C is 0
HANDLE wake = nullptr;

/// The system calls it in a thread of its own, and ends the process when it returns from a closed
/// console.
BOOL WINAPI keep(DWORD event)
{
    int none = 0;
    if (eventThatCame.compare_exchange_strong(none, static_cast<int>(event) + 1))
        SetEvent(wake);
    Sleep(INFINITE);
    return TRUE;
}

} // namespace

void catchEndSignals()
{
    wake = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    SetConsoleCtrlHandler(keep, TRUE);
}

int waitForEndSignal(std::chrono::milliseconds time)
{
    WaitForSingleObject(wake, static_cast<DWORD>(time.count()));
    return eventThatCame.load();
}

bool endSignalHasCome()
{
    return eventThatCame.load() != 0;
}

void endBySignal(int)
{
    constexpr UINT endedByControlC = 0xC000013A;
    TerminateProcess(GetCurrentProcess(), endedByControlC);
    for (;;)
        Sleep(INFINITE);
}

} // namespace corvane
