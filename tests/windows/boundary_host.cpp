// SPDX-License-Identifier: GPL-3.0-or-later
//
// Plays the host for the binding of its functions on Windows. Built three times:
//   all/Corvane.exe           exports every function of the host
//   version_only/Corvane.exe  exports the version function and nothing else (VERSION_ONLY)
//   other_name/Workbench.exe  exports every function, but is not named as the host (OTHER_NAME)
// Exit status 0 when the binding did what it must.
#include "plugin/host_functions.h"

#include <cstdio>

namespace
{

int failures = 0;
int passes = 0;

void check(bool passed, const char *what, const char *name)
{
    if (passed) {
        ++passes;
        return;
    }
    ++failures;
    std::printf("failed: %s: %s\n", name, what);
}

} // namespace

// What this program offers: exported functions that are told apart by their addresses.
#ifdef VERSION_ONLY
extern "C" __declspec(dllexport) void zqGetVersionOfCorvaneZQ(int *, int *, int *) {}
#else
#define HOST_CALL(result, name, arguments)                                                         \
    extern "C" __declspec(dllexport) void name()                                                   \
    {                                                                                              \
        std::puts(#name);                                                                          \
    }
#define HOST_NAME(name)                                                                            \
    extern "C" __declspec(dllexport) void name()                                                   \
    {                                                                                              \
        std::puts(#name);                                                                          \
    }
#include "plugin/host_function_names.inc"
#undef HOST_CALL
#undef HOST_NAME
#endif

namespace
{

[[maybe_unused]] void checkAllNull(const HostFunctionTable &table, bool exceptVersion)
{
#define HOST_CALL(result, name, arguments)                                                         \
    if (!exceptVersion || reinterpret_cast<HostAddress>(table.name) !=                             \
                              reinterpret_cast<HostAddress>(table.zqGetVersionOfCorvaneZQ))        \
        check(table.name == nullptr, "must stay null", #name);
#define HOST_NAME(name) check(table.name == nullptr, "must stay null", #name);
#include "plugin/host_function_names.inc"
#undef HOST_CALL
#undef HOST_NAME
}

} // namespace

int main()
{
    const bool bound = bindHostFunctions();
    const HostFunctionTable &table = hostFunctions();
#if defined(OTHER_NAME)
    check(!bound, "must be false under another name", "bindHostFunctions");
    checkAllNull(table, false);
#elif defined(VERSION_ONLY)
    check(bound, "must be true", "bindHostFunctions");
    check(table.zqGetVersionOfCorvaneZQ == &zqGetVersionOfCorvaneZQ, "must be the export",
          "zqGetVersionOfCorvaneZQ");
    checkAllNull(table, true);
#else
    check(bound, "must be true", "bindHostFunctions");
#define HOST_CALL(result, name, arguments)                                                         \
    check(reinterpret_cast<HostAddress>(table.name) == &name, "must be the export", #name);
#define HOST_NAME(name) check(table.name == &name, "must be the export", #name);
#include "plugin/host_function_names.inc"
#undef HOST_CALL
#undef HOST_NAME
#endif
    std::printf("%d passed, %d failed\n", passes, failures);
    return failures == 0 && passes > 0 ? 0 : 1;
}
