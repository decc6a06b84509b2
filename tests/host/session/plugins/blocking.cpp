// SPDX-License-Identifier: GPL-3.0-or-later
//
// A plugin that never comes back.
#include "plugin/plugin_interface.h"

#include <condition_variable>
#include <mutex>

namespace
{

class Blocking : public CVZQPluginInterface
{
public:
    bool initPlugin() override { return true; }

    bool execute() override
    {
        std::mutex mutex;
        std::condition_variable never;
        std::unique_lock<std::mutex> lock(mutex);
        never.wait(lock, [] { return false; });
        return true;
    }
};

} // namespace

extern "C" {

TESSERA_EXPORT CVZQPluginInterface *createPlugin()
{
    return new Blocking;
}

TESSERA_EXPORT const char *getPluginName()
{
    return "Blocking";
}

TESSERA_EXPORT const char *getAuthor()
{
    return "";
}
}
