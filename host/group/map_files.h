// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/output_folder.h"
#include "host/group/brain_map.h"
#include "statistics/correlation.h"

#include <cstdint>

namespace corvane
{

struct MapRequest {
    BrainMap first, second;
    MatchedMaps matched;
    qint64 permutations = 0;
    std::uint64_t seed = 0;
};

/// What is to be known of the p values wherever they stand.
QString mapPNote();

/// Writes how two maps compare: "comparison.tsv", "nodes.tsv" and "compare.json"
/// (docs/file-formats.md). Throws InputError.
void writeMapFiles(const OutputFolder &folder, const MapRequest &request,
                   const statistics::MapComparison &found);

/// Draws "scatter.png". Needs a QGuiApplication. Throws InputError.
void writeMapPicture(const OutputFolder &folder, const MapRequest &request,
                     const statistics::MapComparison &found);

} // namespace corvane
