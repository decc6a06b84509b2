// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/session/workspace.h"

namespace corvane
{

/// What opens anatomies in the formats of others; empty in a build without them.
AnatomyOpener anatomyOpener();

} // namespace corvane
