// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace corvane
{

/// Version of the host that plugins see: the generation of the function table, not of this program.
constexpr int hostVersion[3] = {3, 0, 0};

} // namespace corvane
