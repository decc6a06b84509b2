// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// TESSERA_EXPORT marks what the plugin module exports; everything else stays hidden.
/// TESSERA_EXPORT_TYPE marks a class whose type information is exported while its members are
/// marked one by one; on Windows type information needs no mark.
/// A host only calls what these headers declare. It defines TESSERA_PLUGIN_HOST, without which it
/// would export type information of the classes on Windows.
#if defined(_WIN32) && defined(TESSERA_PLUGIN_HOST)
#define TESSERA_EXPORT
#define TESSERA_EXPORT_TYPE
#elif defined(_WIN32)
#define TESSERA_EXPORT __declspec(dllexport)
#define TESSERA_EXPORT_TYPE
#else
#define TESSERA_EXPORT __attribute__((visibility("default")))
#define TESSERA_EXPORT_TYPE __attribute__((visibility("default")))
#endif
