// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/plugin_interface.h"

CVZQPluginInterface::CVZQPluginInterface() = default;
CVZQPluginInterface::CVZQPluginInterface(const CVZQPluginInterface &) = default;
CVZQPluginInterface &CVZQPluginInterface::operator=(const CVZQPluginInterface &) = default;
CVZQPluginInterface::~CVZQPluginInterface() = default;
