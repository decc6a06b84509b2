// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// @file
/// What a program does beside its work, in a thread of its own, for what stands at hidden paths: it
/// touches it every half a minute, so that other machines know that somebody works there, and
/// removes it when a signal asks the process to end, which then says so on a terminal and ends by
/// that signal.

namespace corvane
{

/// To be called once, at the beginning. Without it, as in tests, a signal ends the process at once.
void startHousekeeping();

/// Does not return when a signal is about to end the process. To be called before an error is told
/// or an exit status given: what has gone wrong since may come from the clearing away.
void waitIfEnding();

} // namespace corvane
