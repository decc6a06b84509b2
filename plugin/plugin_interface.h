// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/export.h"

/// The host's plugin contract: the order of the virtual operations is part of it.
class TESSERA_EXPORT_CLASS CVZQPluginInterface
{
public:
    // Defined out of line, or they would not be exported.
    CVZQPluginInterface();
    CVZQPluginInterface(const CVZQPluginInterface &other);
    CVZQPluginInterface &operator=(const CVZQPluginInterface &other);
    virtual ~CVZQPluginInterface();

    virtual bool execute() = 0;
    virtual bool initPlugin() = 0;
};
