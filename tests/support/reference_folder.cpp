// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/reference_folder.h"

const char *referenceFolder()
{
    return TESSERA_DATA_DIR;
}
