// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/free_memory.h"

#include <windows.h>

namespace corvane
{

qint64 freeMemory()
{
    MEMORYSTATUSEX status{};
    status.dwLength = sizeof status;
    return GlobalMemoryStatusEx(&status) != 0 ? static_cast<qint64>(status.ullAvailPhys) : 0;
}

} // namespace corvane
