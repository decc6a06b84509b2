// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// @file
/// What differs between operating systems about terminals: terminal_posix.cpp and
/// terminal_windows.cpp.

namespace corvane
{

/// Whether somebody reads standard error as it is written.
bool standardErrorIsTerminal();

} // namespace corvane
