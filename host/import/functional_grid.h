// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/import/lattice.h"

#include <QString>
#include <optional>
#include <vector>

namespace corvane
{

/// The lattice of whole cube voxels on which a run is kept. Arrays are indexed by the axis of the
/// cube: sample i of an axis stands at start + resolution * i.
struct FunctionalGrid {
    std::array<int, 3> start{0, 0, 0};
    std::array<int, 3> size{0, 0, 0};
    int resolution = 1;
    GridSize sourceSize{0, 0, 0};                           ///< of the run as it was recorded
    Eigen::Affine3d toSource = Eigen::Affine3d::Identity(); ///< lattice index to recorded voxel
    bool copied = false;                                    ///< lattice points are recorded voxels
    LatticeBox box;                                         ///< which ones, when `copied`
    qint64 voxelsCut = 0;                                   ///< recorded voxels outside the cube

    qint64 sampleCount() const { return qint64(size[0]) * size[1] * size[2]; }
    /// Whether a lattice point lies in what was recorded, up to the outer faces of its voxels. The
    /// box of a run that lies askew in the cube has corners that do not.
    bool isRecorded(int i, int j, int k) const;
    /// The lattice point that a cube voxel belongs to when a VOI is loaded: the nearest one, halves
    /// going upward. Nothing outside the box and where nothing was recorded.
    std::optional<std::array<int, 3>> recordedPoint(const Eigen::Vector3d &cubeVoxel) const;
    /// Cube voxel of a lattice point.
    std::array<int, 3> cubeVoxel(int i, int j, int k) const
    {
        return {start[0] + resolution * i, start[1] + resolution * j, start[2] + resolution * k};
    }
};

/// The whole number nearest to the size of a voxel, the side of a cube of the same volume; at
/// least 1.
int nearestResolution(const Eigen::Affine3d &gridToCube);

/// Lays the lattice of a run. Where the run's voxels fall on whole cube voxels `resolution` apart,
/// the lattice is those voxels. Elsewhere it is centred in what the run covers, up to the outer
/// faces of its voxels. Throws InputError when no voxel of the run has its centre in the cube.
FunctionalGrid layFunctionalGrid(const Eigen::Affine3d &gridToCube, const GridSize &size,
                                 int resolution, const QString &path);

/// Takes the samples of one volume at the points of a lattice.
class VolumeSampler
{
public:
    explicit VolumeSampler(const FunctionalGrid &grid);

    /// For a grid that is copied. `sampled` has grid.sampleCount() values, first axis fastest.
    void sample(const short *volume, short *sampled) const;

    /// Copied or interpolated trilinearly, as the grid says. Up to half a voxel outside the centres
    /// of the outermost voxels their values count; points farther out are 0.
    void sample(const float *volume, float *sampled) const;

    /// Lattice points that lie outside what was recorded.
    qint64 pointsOutside() const { return m_pointsOutside; }

private:
    struct Point {
        qint32 target;   ///< index on the lattice
        qint32 source;   ///< lowest of the eight voxels around it
        float weight[3]; ///< of the upper voxel on each axis
    };

    void findPoints();

    FunctionalGrid m_grid;
    std::vector<Point> m_points;
    std::array<qint32, 3> m_upper{0, 0, 0}; ///< steps to the upper voxels, 0 on an axis of length 1
    qint64 m_pointsOutside = 0;
};

} // namespace corvane
