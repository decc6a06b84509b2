// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <nodalis/export.h>

namespace nodalis
{
inline namespace NODALIS_ABI
{

/// The library's version, "major.minor.patch". Within one major version signatures, definitions
/// and the text format of to_csv() do not change.
NODALIS_API const char *version();

} // namespace NODALIS_ABI
} // namespace nodalis
