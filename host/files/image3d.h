// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <Eigen/Geometry>
#include <QtGlobal>
#include <array>
#include <vector>

namespace corvane
{

/// Axes of a volume, in voxels.
using GridSize = std::array<qint64, 3>;

/// A 3-D image and where it lies.
template <typename Value>
struct Image3d {
    GridSize size{0, 0, 0};
    /// From voxel indices to millimetres to the right, to the front and up.
    Eigen::Affine3d toWorld = Eigen::Affine3d::Identity();
    /// First axis fastest.
    std::vector<Value> voxels;

    qint64 voxelCount() const { return size[0] * size[1] * size[2]; }
    Value at(qint64 i, qint64 j, qint64 k) const
    {
        return voxels[static_cast<std::size_t>(i + size[0] * (j + size[1] * k))];
    }
};

} // namespace corvane
