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

    HostFunctionTable &table = hostFunctions();
    bind(table.zqGetVersionOfCorvaneZQ, module, "zqGetVersionOfCorvaneZQ");
    if (table.zqGetVersionOfCorvaneZQ == nullptr)
        return false;

        // The version function heads the list and is looked up once more with the others.
#define HOST_CALL(result, name, arguments) bind(table.name, module, #name);
#define HOST_NAME(name) bind(table.name, module, #name);
#include "plugin/host_function_names.inc"
#undef HOST_CALL
#undef HOST_NAME
    return true;
}
