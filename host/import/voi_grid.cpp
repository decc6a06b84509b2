// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/import/voi_grid.h"

#include "host/files/input_error.h"

#include <algorithm>
#include <cmath>

namespace corvane
{

namespace
{

/// How often each sample of the run counts in a mean over a VOI.
std::vector<double> sampleWeights(const Voi &voi, const FunctionalGrid &grid)
{
    std::vector<std::array<int, 3>> points;
    points.reserve(voi.voxels.size());
    for (const std::array<int, 3> &voxel : voi.voxels)
        if (const auto point = grid.recordedPoint(Eigen::Vector3d(voxel[0], voxel[1], voxel[2])))
            points.push_back(*point);
    std::sort(points.begin(), points.end());
    std::vector<double> weights;
    for (std::size_t n = 0; n < points.size(); ++n) {
        if (n == 0 || points[n] != points[n - 1])
            weights.push_back(0);
        ++weights.back();
    }
    return weights;
}

} // namespace

VoxelRange voxelRange(const FunctionalGrid &grid, VoiGrid voiGrid)
{
    VoxelRange range{grid.start, grid.start, 1};
    for (int axis = 0; axis < 3; ++axis)
        range.last[axis] += grid.resolution * (grid.size[axis] - 1);
    if (voiGrid == VoiGrid::Functional) {
        range.step = grid.resolution;
        return range;
    }
    // A lattice point reaches half way to its neighbours; halves round upward.
    for (int axis = 0; axis < 3; ++axis) {
        range.first[axis] = std::max(0, range.first[axis] - grid.resolution / 2);
        range.last[axis] = std::min(cubeSize - 1, range.last[axis] + (grid.resolution - 1) / 2);
    }
    return range;
}

Colour nthColour(int n)
{
    const double hue = std::fmod(n * 0.6180339887498949, 1.0) * 6;
    const auto channel = [&](double offset) {
        const double place = std::fmod(hue + offset, 6.0);
        const double value = std::min(std::max(std::abs(place - 3) - 1, 0.0), 1.0);
        return static_cast<int>(std::lround(55 + 200 * value));
    };
    return {channel(0), channel(4), channel(2)};
}

/// A mean with the weights w is as precise as one with equal weights of (sum w)^2 / sum w^2
/// samples.
QStringList precisionNotes(const VoiSet &set, const FunctionalGrid &grid, const QString &path)
{
    double samples = 0;
    double equalSamples = 0;
    for (const Voi &voi : set.vois) {
        double sum = 0;
        double squares = 0;
        for (const double weight : sampleWeights(voi, grid)) {
            sum += weight;
            squares += weight * weight;
            ++samples;
        }
        if (squares > 0)
            equalSamples += sum * sum / squares;
    }
    if (equalSamples > samples * (1 - 1e-9))
        return {};
    return {QStringLiteral("%1: VOIs of 1 mm voxels weigh the run's samples unequally: their means "
                           "are as precise as those of %2 % of the samples")
                .arg(printable(path, 4096))
                .arg(std::lround(100 * equalSamples / samples))};
}

} // namespace corvane
