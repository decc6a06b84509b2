// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/group/group_data.h"
#include "statistics/rearrangements.h"

namespace corvane
{

/// How the rows of a group are rearranged; reads the file of permutations if there is one. Throws
/// InputError for a file that is none.
statistics::RearrangementOptions rearrangementOptions(const GroupData &data,
                                                      const GroupRequest &request);

} // namespace corvane
