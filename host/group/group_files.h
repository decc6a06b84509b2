// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/output_folder.h"
#include "host/group/group_tests.h"

namespace corvane
{

/// Writes what the contrasts of a group found: "design.tsv", "edges.tsv", "components.tsv" if there
/// are thresholds, "influence.tsv" if there is a t, and "group.json" with everything that was set
/// (docs/file-formats.md). Throws InputError.
void writeGroupFiles(const OutputFolder &folder, const GroupRequest &request, const GroupData &data,
                     const std::vector<ContrastResult> &results);

} // namespace corvane
