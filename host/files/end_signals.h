// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>

/// @file
/// The signals that ask a process to end: Ctrl-C, TERM and HUP, on Windows those of the console.
/// end_signals_posix.cpp and end_signals_windows.cpp.

namespace corvane
{

/// From now on such a signal no longer ends the process: it is kept for waitForEndSignal. One that
/// the process was started to ignore, as by nohup, stays ignored. To be called once.
void catchEndSignals();

/// Waits for a signal and returns its number, 0 when none has come in that time.
int waitForEndSignal(std::chrono::milliseconds time);

/// Whether one has come. From then on the process is as good as ended.
bool endSignalHasCome();

/// Ends the process as that signal would have ended it.
[[noreturn]] void endBySignal(int number);

} // namespace corvane
