// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/host_module.h"
#include "plugin/host_records.h"

/// The host's functions, one entry each: the functions in use with their exact types, every other
/// as an address. An entry that the host does not offer is null.
struct HostFunctionTable {
// NOLINTNEXTLINE(bugprone-macro-parentheses): these are declarations.
#define HOST_CALL(result, name, arguments) result(*name) arguments = nullptr;
#define HOST_NAME(name) HostAddress name = nullptr;
#include "plugin/host_function_names.inc"
#undef HOST_CALL
#undef HOST_NAME
};

/// The one table of the process. Filled by bindHostFunctions; tests set its entries directly.
HostFunctionTable &hostFunctions();

/// Binds every function of the host by name from the host's own executable, null where it has none.
/// Returns false when the process is not the host, or has no `zqGetVersionOfCorvaneZQ`, which is
/// the test that this is the right host; the table then holds what it held, that entry apart.
/// Each call binds afresh.
bool bindHostFunctions();
