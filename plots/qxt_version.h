// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/export.h"

/// Version of the interface that the two-handle slider follows, "0.7.0".
extern "C" TESSERA_EXPORT const char *qxtVersion();
