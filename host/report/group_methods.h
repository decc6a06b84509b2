// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/group/group_results.h"

namespace corvane
{

/// What was done to a group, as the section of methods of a paper tells it, and what it refers to.
struct GroupMethods {
    QStringList paragraphs;
    QStringList references;
};

/// Says of each test that was done what was done, and of no other.
GroupMethods groupMethods(const GroupRequest &request, const GroupData &data,
                          const GroupResults &results);

} // namespace corvane
