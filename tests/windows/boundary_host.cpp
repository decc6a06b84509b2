// SPDX-License-Identifier: GPL-3.0-or-later
//
// Plays the host for the binding of its functions on Windows. Built several times, always with a
// function for each name of the host, of which the program exports some. BINDS tells which of them
// the binding must find:
//   all/Corvane.exe           exports all            All
//   host/Corvane.exe          exports the host's     Calls
//   version_only/Corvane.exe  exports the version    Version
//   other_name/Workbench.exe  exports all            Nothing: it is not named as the host
// Exit status 0 when the binding did what it must.
#include "host/session/host_functions.h"
#include "plugin/host_functions.h"
#include "plugin/plugin_interface.h"

#include <cstddef>
#include <cstdio>
#include <cstring>

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

template <typename Result>
Result nothing()
{
    return Result();
}

} // namespace

// What this program has: functions that are told apart by their addresses. Those of the host are
// declared as the host declares them.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wunused-parameter"
#define HOST_CALL(result, name, arguments)                                                         \
    result name arguments                                                                          \
    {                                                                                              \
        std::puts(#name);                                                                          \
        return nothing<result>();                                                                  \
    }
#define HOST_NAME(name)                                                                            \
    extern "C" void name()                                                                         \
    {                                                                                              \
        std::puts(#name);                                                                          \
    }
#include "plugin/host_function_names.inc"
#undef HOST_CALL
#undef HOST_NAME
#pragma GCC diagnostic pop

namespace
{

template <typename Function>
HostAddress addressOf(Function *function)
{
    return reinterpret_cast<HostAddress>(function);
}

enum class Names { Nothing, Version, Calls, All };
constexpr Names bound = Names::BINDS;

bool mustBeBound(const char *name, bool isCall)
{
    return bound == Names::All || (bound == Names::Calls && isCall) ||
           (bound == Names::Version && std::strcmp(name, "zqGetVersionOfCorvaneZQ") == 0);
}

void checkEntry(HostAddress entry, HostAddress function, const char *name, bool isCall)
{
    if (mustBeBound(name, isCall))
        check(entry == function, "must be the export", name);
    else
        check(entry == nullptr, "must stay null", name);
}

/// Place of a virtual function in the table of its class, in the layout of g++: the first word of
/// the pointer to it is 1 + its distance in bytes.
template <typename Function>
std::size_t slotOf(Function function)
{
    std::size_t word = 0;
    std::memcpy(&word, &function, sizeof word);
    return (word - 1) / sizeof(void *);
}

} // namespace

int main()
{
    check(bindHostFunctions() == (bound != Names::Nothing), "must be told",
          "whether this is the host");
    const HostFunctionTable &table = hostFunctions();
#define HOST_CALL(result, name, arguments)                                                         \
    checkEntry(addressOf(table.name), addressOf(&::name), #name, true);
#define HOST_NAME(name) checkEntry(table.name, addressOf(&::name), #name, false);
#include "plugin/host_function_names.inc"
#undef HOST_CALL
#undef HOST_NAME
    // With g++ the destructor takes two places, on Windows too.
    check(slotOf(&CVZQPluginInterface::execute) == 2, "must be the third", "execute");
    check(slotOf(&CVZQPluginInterface::initPlugin) == 3, "must be the fourth", "initPlugin");
    std::printf("%d passed, %d failed\n", passes, failures);
    return failures == 0 && passes > 0 ? 0 : 1;
}
