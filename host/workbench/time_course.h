// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/cube_voxel.h"
#include "host/files/vtc_file.h"

#include <array>
#include <optional>
#include <vector>

namespace corvane
{

/// The lattice point of a run that is nearest to a voxel of the cube; unset outside the run.
std::optional<std::array<int, 3>> latticePointAt(const VtcInfo &info, const CubeVoxel &voxel);

/// The samples of a run at the lattice point nearest to a voxel of the cube, one for each volume.
/// Empty when the voxel lies outside the run.
std::vector<double> timeCourseAt(const VtcFile &vtc, const CubeVoxel &voxel);

} // namespace corvane
