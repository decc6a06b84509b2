// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/import/uncleaned_course.h"

#include "host/files/input_error.h"
#include "host/files/nifti_stream.h"
#include "host/files/sample_conversion.h"
#include "host/import/functional_grid.h"

namespace corvane
{

namespace
{

/// A lattice of the one point.
FunctionalGrid gridOfPoint(const UncleanedRun &uncleaned, const std::array<int, 3> &point,
                           const NiftiHeader &header)
{
    FunctionalGrid grid;
    grid.size = {1, 1, 1};
    grid.sourceSize = {header.dim[0], header.dim[1], header.dim[2]};
    grid.toSource = uncleaned.toRun * Eigen::Translation3d(point[0], point[1], point[2]);
    return grid;
}

/// The voxel of the run that is the point of the grid, if there is one: its neighbours, which may
/// be no numbers, have no part in it.
std::optional<qint64> voxelAt(const FunctionalGrid &grid)
{
    const Eigen::Vector3d place = grid.toSource.translation();
    if (place != place.array().round().matrix() || !grid.isRecorded(0, 0, 0))
        return std::nullopt;
    const GridSize &size = grid.sourceSize;
    return qint64(place[0]) + size[0] * (qint64(place[1]) + size[1] * qint64(place[2]));
}

void requireUnchanged(const UncleanedRun &uncleaned, const NiftiHeader &header)
{
    const std::optional<QString> fault = uncleanedFault(uncleaned);
    if (fault || header.dim[3] < uncleaned.volumes.back())
        throw InputError(uncleaned.path, QStringLiteral("the run before cleaning"),
                         fault.value_or(QStringLiteral("fewer volumes")),
                         QStringLiteral("the run that was imported"));
}

} // namespace

std::vector<double> uncleanedCourseAt(const VtcInfo &vtc, const std::array<int, 3> &point,
                                      const std::atomic<bool> &isOutdated)
{
    const UncleanedRun &uncleaned = *vtc.uncleaned;
    NiftiStream run(uncleaned.path);
    const NiftiHeader &header = run.header();
    requireUnchanged(uncleaned, header);
    const FunctionalGrid grid = gridOfPoint(uncleaned, point, header);
    const VolumeSampler sampler(grid);
    const std::optional<qint64> voxel = voxelAt(grid);
    const qint64 voxels = header.voxelsPerVolume();
    std::vector<char> stored(static_cast<std::size_t>(header.bytesPerVolume()));
    std::vector<float> values(static_cast<std::size_t>(voxels));
    std::vector<double> course;
    for (int volume = 1; course.size() < uncleaned.volumes.size(); ++volume) {
        if (isOutdated)
            return {};
        run.read(stored.data(), voxels);
        if (volume != uncleaned.volumes[course.size()])
            continue;
        toFloat(header, stored.data(), voxels, values.data());
        float sample = 0;
        if (voxel)
            sample = values[std::size_t(*voxel)];
        else
            sampler.sample(values.data(), &sample);
        course.push_back(double(sample));
    }
    return course;
}

} // namespace corvane
