// SPDX-License-Identifier: GPL-3.0-or-later
#include "plots/qxt_version.h"

const char *qxtVersion()
{
    return "0.7.0";
}
