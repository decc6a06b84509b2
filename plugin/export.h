// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// What the plugin module exports; everything else stays hidden.
/// TESSERA_EXPORT marks a function, TESSERA_EXPORT_CLASS a class with all its members,
/// TESSERA_EXPORT_MEMBER a member of a class that is itself marked TESSERA_EXPORT_TYPE, which
/// exports its type information where others would look for it.
///
/// A host only calls what these headers declare, and defines TESSERA_PLUGIN_HOST.
#if defined(_WIN32) && defined(TESSERA_PLUGIN_HOST)
#define TESSERA_EXPORT
#define TESSERA_EXPORT_CLASS
#define TESSERA_EXPORT_MEMBER
#define TESSERA_EXPORT_TYPE
#elif defined(_WIN32)
#define TESSERA_EXPORT __declspec(dllexport)
#if defined(_MSC_VER)
#define TESSERA_EXPORT_CLASS __declspec(dllexport)
#define TESSERA_EXPORT_MEMBER __declspec(dllexport)
#else
// g++ would export the type information too: tessera.def lists the members instead.
#define TESSERA_EXPORT_CLASS
#define TESSERA_EXPORT_MEMBER
#endif
#define TESSERA_EXPORT_TYPE
#else
#define TESSERA_EXPORT __attribute__((visibility("default")))
#define TESSERA_EXPORT_CLASS TESSERA_EXPORT
#define TESSERA_EXPORT_MEMBER TESSERA_EXPORT
#define TESSERA_EXPORT_TYPE TESSERA_EXPORT
#endif
