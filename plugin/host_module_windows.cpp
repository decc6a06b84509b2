// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/host_module.h"

#include <windows.h>

HostModule hostModule()
{
    return GetModuleHandleA("Corvane.exe");
}

HostAddress hostSymbol(HostModule module, const char *name)
{
    return reinterpret_cast<HostAddress>(GetProcAddress(static_cast<HMODULE>(module), name));
}
