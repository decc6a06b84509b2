// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/host_module.h"

#include <climits>
#include <cstring>
#include <dlfcn.h>
#include <string>
#include <sys/auxv.h>
#include <unistd.h>

namespace
{

std::string executablePath()
{
    char path[PATH_MAX];
    const ssize_t length = readlink("/proc/self/exe", path, sizeof path);
    return length > 0 ? std::string(path, static_cast<std::size_t>(length)) : std::string();
}

/// Load address of the object that holds `address`, null when none does.
void *loadAddress(const void *address)
{
    Dl_info found;
    return dladdr(address, &found) != 0 ? found.dli_fbase : nullptr;
}

bool inMainProgram(const void *address)
{
    // The entry point that the kernel jumped to lies in the main program.
    // NOLINTNEXTLINE(performance-no-int-to-ptr): the kernel tells the address as a number.
    const auto *entry = reinterpret_cast<const void *>(getauxval(AT_ENTRY));
    return loadAddress(address) == loadAddress(entry);
}

} // namespace

HostModule hostModule()
{
    const std::string path = executablePath();
    if (path.substr(path.rfind('/') + 1) != "Corvane")
        return nullptr;
    // The handle of the main program lives as long as the process; there is nothing to close.
    return dlopen(nullptr, RTLD_LAZY);
}

HostAddress hostSymbol(HostModule module, const char *name)
{
    // dlsym on the main program also finds names in every loaded library: take only its own.
    void *address = dlsym(module, name);
    if (address == nullptr || !inMainProgram(address))
        return nullptr;
    static_assert(sizeof(HostAddress) == sizeof(void *));
    HostAddress function = nullptr;
    std::memcpy(&function, &address, sizeof function);
    return function;
}
