// SPDX-License-Identifier: GPL-3.0-or-later
#include <nodalis/version.h>

namespace nodalis
{
inline namespace NODALIS_ABI
{

const char *version()
{
    return NODALIS_VERSION;
}

} // namespace NODALIS_ABI
} // namespace nodalis
