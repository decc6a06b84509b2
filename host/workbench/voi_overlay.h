// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/voi_file.h"
#include "host/workbench/volume_slices.h"

#include <QColor>
#include <vector>

namespace corvane
{

/// A voxel of a set of VOIs in the coordinates of the cube.
CubeVoxel cubeVoxel(const VoiSet &set, const std::array<int, 3> &voxel);

/// Distance between neighbouring voxels of a set, in voxels of the cube: the greatest that all
/// voxels keep on all axes. VOIs on a functional grid of 3 mm have 3. At least 1.
int voxelSpacing(const VoiSet &set);

/// The voxel of a VOI that is nearest to the mean of all of them. Nothing for an empty VOI.
std::optional<CubeVoxel> centreOf(const VoiSet &set, std::size_t voi);

/// Which VOI is to be seen at each voxel of the cube. A voxel of a set with a wider spacing stands
/// for the block around it, so that its VOIs are areas and not dots. Of VOIs that overlap the last
/// is seen; of more than 65,535 only those before.
class VoiOverlay
{
public:
    VoiOverlay(const VoiSet &set, const std::vector<bool> &shown);

    /// At i + 256 * (j + 256 * k): 1 + the index of the VOI, 0 where there is none.
    quint16 labelAt(std::size_t index) const { return m_labels[index]; }
    quint16 labelAt(const CubeVoxel &voxel) const;
    QRgb colour(quint16 label) const { return m_colours[label]; }

private:
    void mark(const CubeVoxel &centre, int spacing, quint16 label);

    std::vector<quint16> m_labels;
    std::vector<QRgb> m_colours;
};

} // namespace corvane
