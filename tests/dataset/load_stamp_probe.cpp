// SPDX-License-Identifier: GPL-3.0-or-later
//
// Prints the time stamp that the library took when this program loaded it.
#include "dataset/plugin_settings.h"

#include <cstdio>

int main()
{
    std::puts(loadStamp.toLatin1().constData());
    return 0;
}
