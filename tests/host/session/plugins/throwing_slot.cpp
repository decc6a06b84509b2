// SPDX-License-Identifier: GPL-3.0-or-later
//
// A plugin whose window works until a slot of it throws.
#include "plugin/plugin_interface.h"

#include <QTimer>
#include <stdexcept>

namespace
{

class ThrowingSlot : public CVZQPluginInterface
{
public:
    bool initPlugin() override { return true; }

    bool execute() override
    {
        QTimer::singleShot(0, &m_receiver, [] { throw std::logic_error("a slot gave up"); });
        return true;
    }

private:
    QObject m_receiver;
};

} // namespace

extern "C" {

TESSERA_EXPORT CVZQPluginInterface *createPlugin()
{
    return new ThrowingSlot;
}

TESSERA_EXPORT const char *getPluginName()
{
    return "Throwing Slot";
}

TESSERA_EXPORT const char *getAuthor()
{
    return "";
}
}
