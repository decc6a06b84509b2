// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/export.h"

class CVZQPluginInterface;

/// The functions by which the host recognises and makes the plugin. The texts are constant for the
/// life of the library; description, script and version are empty.
extern "C" {
/// A new plugin object on the heap, owned by the host.
TESSERA_EXPORT CVZQPluginInterface *createPlugin();
TESSERA_EXPORT const char *getPluginName();
TESSERA_EXPORT const char *getPluginDescription();
TESSERA_EXPORT const char *getAuthor(); ///< between `<i>` and `</i>`
TESSERA_EXPORT const char *getGUIScript();
TESSERA_EXPORT const char *getPluginVersion();
}
