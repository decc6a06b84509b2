// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/host_functions.h"

#include <type_traits>

namespace
{

template <auto Entry>
void bind(HostFunctionTable &table, HostAddress address)
{
    using Function = std::remove_reference_t<decltype(table.*Entry)>;
    table.*Entry = reinterpret_cast<Function>(address);
}

struct Binding {
    const char *name;
    void (*bind)(HostFunctionTable &, HostAddress);
};

constexpr Binding bindings[] = {
#define HOST_CALL(result, name, arguments) {#name, bind<&HostFunctionTable::name>},
#define HOST_NAME(name) {#name, bind<&HostFunctionTable::name>},
#include "plugin/host_function_names.inc"
#undef HOST_CALL
#undef HOST_NAME
};

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
    for (const Binding &binding : bindings) {
        binding.bind(table, hostSymbol(module, binding.name));
        // The version function heads the list: without it nothing else is looked up.
        if (table.zqGetVersionOfCorvaneZQ == nullptr)
            return false;
    }
    return true;
}
