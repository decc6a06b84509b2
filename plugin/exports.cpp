// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/exports.h"

#include "plugin/maker.h"
#include "plugin/tessera_plugin.h"

namespace
{
const char *const pluginName = "Tessera Analysis";
const char *const pluginDescription = "";
const char *const pluginAuthor = maker::authorLine;
const char *const pluginScript = "";
const char *const pluginVersion = "";
} // namespace

CVZQPluginInterface *createPlugin()
{
    return new Tessera_Plugin;
}

const char *getPluginName()
{
    return pluginName;
}

const char *getPluginDescription()
{
    return pluginDescription;
}

const char *getAuthor()
{
    return pluginAuthor;
}

const char *getGUIScript()
{
    return pluginScript;
}

const char *getPluginVersion()
{
    return pluginVersion;
}
