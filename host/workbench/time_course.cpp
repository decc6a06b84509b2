// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/workbench/time_course.h"

#include <cmath>

namespace corvane
{

namespace
{

/// The sample of an axis that is nearest to a coordinate, halves upward; -1 outside the run.
qint64 nearestSample(int coordinate, int start, int resolution, int count)
{
    const double place = static_cast<double>(coordinate - start) / resolution;
    const auto sample = static_cast<qint64>(std::floor(place + 0.5));
    return sample >= 0 && sample < count ? sample : -1;
}

} // namespace

std::vector<double> timeCourseAt(const VtcFile &vtc, const CubeVoxel &voxel)
{
    const VtcInfo &info = vtc.info();
    const qint64 i = nearestSample(voxel[0], info.xStart, info.resolution, info.dimX());
    const qint64 j = nearestSample(voxel[1], info.yStart, info.resolution, info.dimY());
    const qint64 k = nearestSample(voxel[2], info.zStart, info.resolution, info.dimZ());
    if (i < 0 || j < 0 || k < 0)
        return {};
    const qint64 first = info.nrOfVolumes * (i + info.dimX() * (j + info.dimY() * k));
    if (info.type == VtcInfo::Short) {
        const short *const samples = vtc.shortSamples() + first;
        return {samples, samples + info.nrOfVolumes};
    }
    const float *const samples = vtc.floatSamples() + first;
    return {samples, samples + info.nrOfVolumes};
}

} // namespace corvane
