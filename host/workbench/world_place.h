// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/cube_voxel.h"
#include "host/files/vmr_file.h"

#include <array>
#include <optional>

/// @file
/// Places in millimetres: to the right, to the front and up.

namespace corvane
{

using WorldPlace = std::array<double, 3>;

/// The place of a voxel's middle. `vmr.space` must be set.
WorldPlace worldPosition(const Vmr &vmr, const CubeVoxel &voxel);

/// The voxel that a place lies in, which may be outside the cube. `vmr.space` must be set.
CubeVoxel voxelAtWorld(const Vmr &vmr, const WorldPlace &place);

/// Such as "L 42.0  P 22.0  S 54.0 mm".
QString worldText(const WorldPlace &place);

/// A place as people write it: "-42 -22 54", "-42, -22, 54 mm", or what worldText gives, with the
/// letters in any order. Unset for anything else.
std::optional<WorldPlace> worldPlaceOf(const QString &text);

} // namespace corvane
