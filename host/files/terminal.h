// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// @file
/// What differs between operating systems about terminals: terminal_posix.cpp and
/// terminal_windows.cpp.

namespace corvane
{

/// Goes back to the beginning of the line and empties it.
constexpr const char *terminalLineStart = "\r\x1b[K";

/// Whether somebody reads standard error as it is written.
bool standardErrorIsTerminal();

} // namespace corvane
