// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/image3d.h"

#include <optional>

/// @file
/// Grids whose samples fall on whole voxels of a cube of 256: they are copied, not interpolated.

namespace corvane
{

/// Voxels of the cube on each axis; their centres stand at 0 to 255.
constexpr int cubeSize = 256;

/// How a grid lies on whole voxels of the cube. All arrays are indexed by the axis of the grid.
struct LatticeMap {
    std::array<int, 3> axis{0, 1, 2}; ///< the cube's axis along which it runs
    std::array<int, 3> step{1, 1,
                            1}; ///< cube voxels to its next sample, negative when it runs back
    std::array<qint64, 3> start{0, 0,
                                0}; ///< where its first sample stands, on that axis of the cube
};

/// The map of a grid whose samples stand `resolution` voxels apart on whole voxels of the cube,
/// none more than a twentieth of a millimetre off. Nothing when it is no such grid.
std::optional<LatticeMap> latticeMap(const Eigen::Affine3d &gridToCube, const GridSize &size,
                                     int resolution);

/// The part of a grid inside the cube. All arrays are indexed by the axis of the cube.
struct LatticeBox {
    std::array<int, 3> start{0, 0, 0}; ///< cube voxel of the first sample
    std::array<int, 3> size{0, 0, 0};  ///< samples on each axis; a 0 means that nothing is inside
    qint64 source = 0;                 ///< place of that first sample in the grid's own array
    std::array<qint64, 3> sourceStride{0, 0, 0}; ///< from a sample to the next one in that array

    bool isEmpty() const { return size[0] == 0 || size[1] == 0 || size[2] == 0; }
    qint64 sampleCount() const { return qint64(size[0]) * size[1] * size[2]; }
};

LatticeBox cutToCube(const LatticeMap &map, const GridSize &size);

/// Copies the box out of the grid's array. `target` is where the box's first sample goes and
/// `targetStride` the steps along the axes of the cube there; `convert` makes the copied value.
template <typename Source, typename Target, typename Convert>
void copyBox(const LatticeBox &box, const Source *grid, Target *target,
             const std::array<qint64, 3> &targetStride, Convert convert)
{
    // The cube's last axis in the middle: it is most often the grid's first, whose neighbours share
    // a cache line that is still there when the next one is copied.
    const Source *const source = grid + box.source;
    for (int j = 0; j < box.size[1]; ++j)
        for (int k = 0; k < box.size[2]; ++k) {
            const Source *from = source + j * box.sourceStride[1] + k * box.sourceStride[2];
            Target *to = target + j * targetStride[1] + k * targetStride[2];
            for (int i = 0; i < box.size[0]; ++i)
                to[i * targetStride[0]] = convert(from[i * box.sourceStride[0]]);
        }
}

/// Where the corner voxels of a grid, or with `margin` 0.5 the corners of those voxels, lie.
Eigen::AlignedBox3d gridBounds(const Eigen::Affine3d &gridTo, const GridSize &size, double margin);

/// Voxels of a grid whose centres lie outside the cube, by more than half a voxel of it.
qint64 voxelsOutsideCube(const Eigen::Affine3d &gridToCube, const GridSize &size);

} // namespace corvane
