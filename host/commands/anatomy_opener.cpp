// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/commands/anatomy_opener.h"

#ifdef CORVANE_IMPORT
#include "host/import/resample_anatomy.h"
#endif

namespace corvane
{

AnatomyOpener anatomyOpener()
{
#ifdef CORVANE_IMPORT
    return openForeignAnatomy;
#else
    return {};
#endif
}

} // namespace corvane
