// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/import/lattice.h"

#include <cmath>

namespace corvane
{

namespace
{

/// How far from its whole voxel a sample may stand to be copied onto it, in mm.
constexpr double latticeTolerance = 0.05;

/// Voxel indices of one of the eight corners.
Eigen::Vector3d corner(const GridSize &size, int number, double margin = 0)
{
    Eigen::Vector3d voxel;
    for (int axis = 0; axis < 3; ++axis)
        voxel[axis] = (number >> axis & 1) ? static_cast<double>(size[axis] - 1) + margin : -margin;
    return voxel;
}

Eigen::Affine3d affine(const LatticeMap &map)
{
    Eigen::Affine3d result;
    result.matrix().setZero();
    result(3, 3) = 1;
    for (int axis = 0; axis < 3; ++axis) {
        result(map.axis[axis], axis) = map.step[axis];
        result(map.axis[axis], 3) = static_cast<double>(map.start[axis]);
    }
    return result;
}

} // namespace

std::optional<LatticeMap> latticeMap(const Eigen::Affine3d &gridToCube, const GridSize &size,
                                     int resolution)
{
    // Beyond this no coordinate is near the cube, and whole numbers would overflow.
    if (!(gridToCube.matrix().cwiseAbs().maxCoeff() < 1e6))
        return std::nullopt;
    LatticeMap map;
    bool taken[3] = {false, false, false};
    for (int axis = 0; axis < 3; ++axis) {
        Eigen::Index along = 0;
        const Eigen::Vector3d direction = gridToCube.linear().col(axis);
        direction.cwiseAbs().maxCoeff(&along);
        if (taken[along])
            return std::nullopt;
        taken[along] = true;
        map.axis[axis] = static_cast<int>(along);
        map.step[axis] = direction[along] < 0 ? -resolution : resolution;
        map.start[axis] = std::llround(gridToCube(along, 3));
    }
    const Eigen::Affine3d rounded = affine(map);
    for (int number = 0; number < 8; ++number) {
        const Eigen::Vector3d voxel = corner(size, number);
        if ((gridToCube * voxel - rounded * voxel).norm() > latticeTolerance)
            return std::nullopt;
    }
    return map;
}

LatticeBox cutToCube(const LatticeMap &map, const GridSize &size)
{
    LatticeBox box;
    const qint64 stride[3] = {1, size[0], size[0] * size[1]};
    for (int axis = 0; axis < 3; ++axis) {
        // Samples from `first` to before `end` stand within 0 to 255.
        qint64 first = 0;
        qint64 end = size[axis];
        const qint64 step = map.step[axis];
        const auto inside = [&](qint64 index) {
            const qint64 place = map.start[axis] + step * index;
            return place >= 0 && place < cubeSize;
        };
        while (first < end && !inside(first))
            ++first;
        while (end > first && !inside(end - 1))
            --end;
        const int along = map.axis[axis];
        const qint64 nearest = step > 0 ? first : end - 1;
        box.start[along] = static_cast<int>(end > first ? map.start[axis] + step * nearest : 0);
        box.size[along] = static_cast<int>(end - first);
        box.sourceStride[along] = step > 0 ? stride[axis] : -stride[axis];
        box.source += nearest * stride[axis];
    }
    return box;
}

Eigen::AlignedBox3d gridBounds(const Eigen::Affine3d &gridTo, const GridSize &size, double margin)
{
    Eigen::AlignedBox3d bounds;
    for (int number = 0; number < 8; ++number)
        bounds.extend(gridTo * corner(size, number, margin));
    return bounds;
}

qint64 voxelsOutsideCube(const Eigen::Affine3d &gridToCube, const GridSize &size)
{
    const double first = -0.5;
    const double last = cubeSize - 0.5;
    const Eigen::AlignedBox3d cube(Eigen::Vector3d::Constant(first),
                                   Eigen::Vector3d::Constant(last));
    if (cube.contains(gridBounds(gridToCube, size, 0)))
        return 0;
    qint64 outside = 0;
    const Eigen::Vector3d step = gridToCube.linear().col(0);
    for (qint64 k = 0; k < size[2]; ++k)
        for (qint64 j = 0; j < size[1]; ++j) {
            const Eigen::Vector3d rowStart =
                gridToCube * Eigen::Vector3d(0, static_cast<double>(j), static_cast<double>(k));
            for (qint64 i = 0; i < size[0]; ++i)
                if (!cube.contains(rowStart + static_cast<double>(i) * step))
                    ++outside;
        }
    return outside;
}

} // namespace corvane
