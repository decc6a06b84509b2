// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/host_module.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <dlfcn.h>
#include <filesystem>
#include <string>
#include <sys/auxv.h>
#include <system_error>
#include <unistd.h>

namespace
{

constexpr const char *executable = "/proc/self/exe";

bool isFileOfThisProcess(const std::string &path)
{
    std::error_code notThere;
    return std::filesystem::equivalent(path, executable, notThere);
}

/// The path under which the executable was loaded. The file that is there by now may be another
/// one, or none: the kernel marks such a path at its end.
std::string executablePath()
{
    char buffer[PATH_MAX];
    const ssize_t length = readlink(executable, buffer, sizeof buffer);
    std::string path(buffer, length > 0 ? static_cast<std::size_t>(length) : 0);
    const std::string mark = " (deleted)";
    const std::size_t end = path.size() - std::min(path.size(), mark.size());
    if (path.compare(end, mark.size(), mark) == 0 && !isFileOfThisProcess(path))
        path.resize(end);
    return path;
}

/// Load address of the object that holds `address`, null when none does.
void *loadAddress(const void *address)
{
    Dl_info found = {};
    dladdr(address, &found);
    return found.dli_fbase;
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
