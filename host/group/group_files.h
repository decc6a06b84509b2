// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/output_folder.h"
#include "host/group/group_results.h"

namespace corvane
{

/// Writes what the tests of a group found: of the model at every edge "design.tsv", "edges.tsv",
/// "components.tsv" if there are thresholds and "influence.tsv" if there is a t; the tables of the
/// other tests (test_tables.h); and "group.json" with everything that was set
/// (docs/file-formats.md). Throws InputError.
void writeGroupFiles(const OutputFolder &folder, const GroupRequest &request, const GroupData &data,
                     const GroupResults &results);

} // namespace corvane
