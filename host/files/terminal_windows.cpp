// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/terminal.h"

#include <windows.h>

namespace corvane
{

bool standardErrorIsTerminal()
{
    // The null device is a terminal to the C library, but not to the system.
    DWORD mode = 0;
    return GetConsoleMode(GetStdHandle(STD_ERROR_HANDLE), &mode) != 0;
}

} // namespace corvane
