// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/workbench/application.h"

namespace corvane
{

bool thereIsADisplay()
{
    return true;
}

} // namespace corvane
