// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/label_table.h"
#include "host/files/voi_file.h"
#include "host/import/functional_grid.h"

#include <QStringList>

/// @file
/// What VOIs of all origins have in common: the places that they may hold, and their colours.

namespace corvane
{

/// Which voxels a VOI is made of: one for each lattice point of the run, so that a mean weighs each
/// functional voxel once, or every cube voxel of 1 mm, so that it weighs them by how much of them
/// lies in the VOI, which costs precision.
enum class VoiGrid { Functional, Anatomy };

/// What becomes of a region: its voxels where it comes from, and those of them where the run has
/// samples that were recorded.
struct LabelCount {
    qint64 inAtlas = 0;
    qint64 insideRun = 0;
};

/// Cube voxels, all or those `step` apart, from `first` to `last` on each axis.
struct VoxelRange {
    std::array<int, 3> first;
    std::array<int, 3> last;
    int step;
};

/// Those that a VOI may hold.
VoxelRange voxelRange(const FunctionalGrid &grid, VoiGrid voiGrid);

/// Colours that differ from their neighbours: the hue goes on by the golden angle.
Colour nthColour(int n);

/// What VOIs of 1 mm voxels cost in precision, in a line; none when it is nothing. `path` is what
/// they are made of.
QStringList precisionNotes(const VoiSet &set, const FunctionalGrid &grid, const QString &path);

} // namespace corvane
