// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/session/export.h"
#include "plugin/host_records.h"

/// @file
/// The functions that the host offers its plugins, found by name in its executable. They work on
/// the current session, run on the main thread, and let no exception out: one that fails says why
/// in the log and returns 0 or null. Numbers and ids of documents are their positions from 0.
/// Paths and logged texts are UTF-8. A record that has nothing to tell is filled with zeros.
///
/// Pointers that they return belong to the host and stay valid until the next load of their kind.
/// Samples and voxels of the anatomy may lie in a private mapping of a file: writing to them
/// changes no file.

#define HOST_CALL(result, name, arguments) extern "C" CORVANE_EXPORT result name arguments;
#define HOST_NAME(name)
#include "plugin/host_function_names.inc"
#undef HOST_CALL
#undef HOST_NAME
