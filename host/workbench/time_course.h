// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/cube_voxel.h"
#include "host/files/vtc_file.h"

#include <array>
#include <atomic>
#include <optional>
#include <vector>

namespace corvane
{

/// The sample of an axis that is nearest to a coordinate of the cube, halves upward; -1 outside the
/// run, whose samples stand at start + resolution * i.
int nearestSample(int coordinate, int start, int resolution, int count);

/// The lattice point of a run that is nearest to a voxel of the cube; unset outside the run.
std::optional<std::array<int, 3>> latticePointAt(const VtcInfo &info, const CubeVoxel &voxel);

/// The samples of a run at the lattice point nearest to a voxel of the cube, one for each volume.
/// Empty when the voxel lies outside the run.
std::vector<double> timeCourseAt(const VtcFile &vtc, const CubeVoxel &voxel);

/// The mean of the samples at some voxels of the cube, one for each volume, as the analysis
/// averages a VOI: a sample counts as often as voxels are nearest to it, and a voxel outside the
/// run counts as 0. Empty without voxels and once `isOutdated` is true.
std::vector<double> meanCourseOf(const VtcFile &vtc, const std::vector<CubeVoxel> &voxels,
                                 const std::atomic<bool> &isOutdated);

} // namespace corvane
