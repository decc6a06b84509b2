// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/workbench/application.h"

namespace corvane
{

bool thereIsADisplay()
{
    return qEnvironmentVariableIsSet("DISPLAY") || qEnvironmentVariableIsSet("WAYLAND_DISPLAY") ||
           qEnvironmentVariableIsSet("QT_QPA_PLATFORM");
}

} // namespace corvane
