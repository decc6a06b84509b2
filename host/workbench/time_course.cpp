// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/workbench/time_course.h"

#include <cmath>

namespace corvane
{

int nearestSample(int coordinate, int start, int resolution, int count)
{
    const double place = static_cast<double>(coordinate - start) / resolution;
    const auto sample = static_cast<int>(std::floor(place + 0.5));
    return sample >= 0 && sample < count ? sample : -1;
}

std::optional<std::array<int, 3>> latticePointAt(const VtcInfo &info, const CubeVoxel &voxel)
{
    const int i = nearestSample(voxel[0], info.xStart, info.resolution, info.dimX());
    const int j = nearestSample(voxel[1], info.yStart, info.resolution, info.dimY());
    const int k = nearestSample(voxel[2], info.zStart, info.resolution, info.dimZ());
    if (i < 0 || j < 0 || k < 0)
        return std::nullopt;
    return std::array<int, 3>{i, j, k};
}

std::vector<double> timeCourseAt(const VtcFile &vtc, const CubeVoxel &voxel)
{
    const VtcInfo &info = vtc.info();
    const auto point = latticePointAt(info, voxel);
    if (!point)
        return {};
    const auto &[i, j, k] = *point;
    const qint64 first = info.nrOfVolumes * (i + info.dimX() * (j + qint64(info.dimY()) * k));
    if (info.type == VtcInfo::Short) {
        const short *const samples = vtc.shortSamples() + first;
        return {samples, samples + info.nrOfVolumes};
    }
    const float *const samples = vtc.floatSamples() + first;
    return {samples, samples + info.nrOfVolumes};
}

std::vector<double> meanCourseOf(const VtcFile &vtc, const std::vector<CubeVoxel> &voxels,
                                 const std::atomic<bool> &isOutdated)
{
    if (voxels.empty())
        return {};
    std::vector<double> mean(static_cast<std::size_t>(vtc.info().nrOfVolumes));
    for (const CubeVoxel &voxel : voxels) {
        if (isOutdated)
            return {};
        const std::vector<double> course = timeCourseAt(vtc, voxel);
        for (std::size_t volume = 0; volume < course.size(); ++volume)
            mean[volume] += course[volume];
    }
    for (double &value : mean)
        value /= static_cast<double>(voxels.size());
    return mean;
}

} // namespace corvane
