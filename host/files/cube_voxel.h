// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>

namespace corvane
{

/// Indices of a voxel of 1 mm in the cube of an anatomy; see Vmr.
using CubeVoxel = std::array<int, 3>;

} // namespace corvane
