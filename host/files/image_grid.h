// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/image3d.h"

#include <QString>

/// @file
/// Grids of images in words, and values looked up between grids.

namespace corvane
{

/// "3 x 3 x 3.5 mm"
QString voxelText(const Eigen::Affine3d &toWorld);

/// "60 x 72 x 60 voxels of 3 x 3 x 3 mm"
QString gridText(const GridSize &size, const Eigen::Affine3d &toWorld);

/// The index of the voxel of a grid in which a place, in voxels, lies; halves go upward. -1
/// outside.
qint64 nearestVoxel(const GridSize &size, const Eigen::Vector3d &place);

/// The label at a place of the atlas, in voxels, by nearest neighbour; 0 outside.
inline qint32 labelAt(const Image3d<qint32> &atlas, const Eigen::Vector3d &place)
{
    const qint64 voxel = nearestVoxel(atlas.size, place);
    return voxel < 0 ? 0 : atlas.voxels[static_cast<std::size_t>(voxel)];
}

} // namespace corvane
