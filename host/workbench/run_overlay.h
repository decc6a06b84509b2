// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/painting/colour_map.h"
#include "host/workbench/time_course.h"

#include <QColor>
#include <atomic>

/// @file
/// A functional run as a picture over its anatomy, to judge how the two lie on each other.

namespace corvane
{

/// The mean of all volumes of a run, or one of them (counted from 1), at each point of its lattice,
/// first axis fastest. The whole file is looked at: this is for a thread of its own. Empty once
/// `isOutdated` is true.
std::vector<double> meanOfRun(const VtcFile &vtc, const std::atomic<bool> &isOutdated);
std::vector<double> volumeOfRun(const VtcFile &vtc, int volume,
                                const std::atomic<bool> &isOutdated);

/// Where the samples of a run stand in the cube: sample i of an axis at start + resolution * i.
struct RunLattice {
    std::array<int, 3> start{0, 0, 0};
    std::array<int, 3> size{0, 0, 0};
    int resolution = 1;

    bool operator==(const RunLattice &other) const
    {
        return start == other.start && size == other.size && resolution == other.resolution;
    }
};
RunLattice latticeOf(const VtcInfo &info);

/// One value of each sample of a run as colours of the cube. A sample colours the voxels that it is
/// the nearest one of. The scale runs from the 2nd to the 98th percentile of what has a colour.
/// Values whose size is below a tenth of the 98th percentile, as around the head, and those that
/// are not finite leave the anatomy as it is.
class RunOverlay
{
public:
    /// `values` has one for each point of the lattice, first axis fastest.
    RunOverlay(const RunLattice &lattice, std::vector<double> values, ColourMap map);

    /// The value at a voxel; unset outside the run.
    std::optional<double> valueAt(const CubeVoxel &voxel) const;
    /// Its colour; 0, which is no colour, where the anatomy stays as it is.
    QRgb colourAt(const CubeVoxel &voxel) const;

private:
    /// Place of the nearest sample in the values; -1 outside the run.
    qint64 sampleAt(const CubeVoxel &voxel) const;

    std::array<int, 3> m_size;
    std::array<std::vector<int>, 3> m_nearest; ///< sample of each coordinate; -1 outside
    std::vector<double> m_values;
    std::vector<QRgb> m_colours; ///< of the values
};

} // namespace corvane
