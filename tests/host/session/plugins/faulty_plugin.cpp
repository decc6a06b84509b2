// SPDX-License-Identifier: GPL-3.0-or-later
//
// A plugin that behaves, or fails in the way that FAULT names.
#include "plugin/plugin_interface.h"

#include <memory>
#include <stdexcept>
#include <string>

extern "C" {
// The host's, found when the library is loaded.
void zqLogText(const char *text);
void zqMessageBox(const char *text);
#ifdef OTHER_HOST
void zqNeverThere();
#endif
}

namespace
{

bool faultIs(const char *fault)
{
    return std::string(FAULT) == fault;
}

class FaultyPlugin : public CVZQPluginInterface
{
public:
    FaultyPlugin()
    {
        if (faultIs("create throws"))
            throw std::runtime_error("no plugin\ntoday");
    }
    ~FaultyPlugin() override { zqLogText("deleted"); }

    bool initPlugin() override
    {
        zqLogText("initPlugin");
        if (faultIs("init throws"))
            throw std::runtime_error("not ready");
        if (faultIs("init throws a number"))
            throw 7;
        if (faultIs("refuses"))
            zqMessageBox("Not without\nan anatomy.");
        return !faultIs("refuses") && !faultIs("refuses silently");
    }

    bool execute() override
    {
        zqLogText("execute");
        if (faultIs("execute throws"))
            throw std::out_of_range("beyond");
        return !faultIs("execute fails");
    }
};

} // namespace

extern "C" {

TESSERA_EXPORT CVZQPluginInterface *createPlugin()
{
#ifdef OTHER_HOST
    zqNeverThere();
#endif
    return faultIs("create gives none") ? nullptr : new FaultyPlugin;
}

TESSERA_EXPORT const char *getPluginName()
{
    if (faultIs("name throws"))
        throw std::runtime_error("what name");
    if (faultIs("no name"))
        return nullptr;
    return faultIs("empty name") ? "" : "Plugin & " FAULT;
}

#ifndef WITHOUT_AUTHOR
TESSERA_EXPORT const char *getAuthor()
{
    return faultIs("author is none") ? nullptr : "<i>The Testers</i>";
}
#endif
}
