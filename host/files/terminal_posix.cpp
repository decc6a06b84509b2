// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/terminal.h"

#include <unistd.h>

namespace corvane
{

bool standardErrorIsTerminal()
{
    return isatty(STDERR_FILENO) == 1;
}

} // namespace corvane
