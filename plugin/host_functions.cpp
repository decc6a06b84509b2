// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/host_functions.h"

namespace
{

template <typename Entry>
void bind(Entry &entry, HostModule module, const char *name)
{
    entry = reinterpret_cast<Entry>(hostSymbol(module, name));
}

} // namespace

HostFunctionTable &hostFunctions()
{
    static HostFunctionTable table;
    return table;
}

bool bindHostFunctions()
{
    HostModule module = hostModule();
    if (module == nullptr)
        return false;

    // The version function heads the list: without it nothing else is looked up.
    HostFunctionTable &table = hostFunctions();
#define HOST_CALL(result, name, arguments)                                                         \
    bind(table.name, module, #name);                                                               \
    if (table.zqGetVersionOfCorvaneZQ == nullptr)                                                  \
        return false;
#define HOST_NAME(name) bind(table.name, module, #name);
#include "plugin/host_function_names.inc"
#undef HOST_CALL
#undef HOST_NAME
    return true;
}
