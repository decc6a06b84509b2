// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// @file
/// The seam to the operating system: where the host's functions are looked up.
/// Written once per system: host_module_windows.cpp, host_module_posix.cpp.

using HostModule = void *;
using HostAddress = void (*)();

/// The already loaded module of the host, null when this process is not the host.
/// Nothing is loaded.
HostModule hostModule();

/// Address of a function that the host's own module exports, null when it has none of that name.
HostAddress hostSymbol(HostModule module, const char *name);
