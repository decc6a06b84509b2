// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtGlobal>

/// @file
/// How much memory programs may still take: free_memory_posix.cpp and free_memory_windows.cpp.

namespace corvane
{

/// In bytes, of the machine or of the part of it that this process may use, whichever is less; 0
/// where the system does not tell it.
qint64 freeMemory();

} // namespace corvane
