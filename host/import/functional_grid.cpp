// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/import/functional_grid.h"

#include "host/files/input_error.h"
#include "host/files/text_check.h"

#include <QStringList>
#include <cmath>

namespace corvane
{

namespace
{

QString boundsText(const Eigen::AlignedBox3d &bounds)
{
    QStringList axes;
    for (int axis = 0; axis < 3; ++axis)
        axes +=
            QStringLiteral("%1 to %2")
                .arg(readableNumber(bounds.min()[axis], 1), readableNumber(bounds.max()[axis], 1));
    return axes.join(QStringLiteral(", "));
}

[[noreturn]] void failOutside(const QString &path, const Eigen::AlignedBox3d &covered)
{
    throw InputError(path, QStringLiteral("position relative to the anatomy"),
                     QStringLiteral("a run that covers voxels %1, none with its centre inside")
                         .arg(boundsText(covered)),
                     QStringLiteral("one that overlaps the anatomy's cube, voxels 0 to 255"));
}

/// Places within rounding of a border stand on its inner side.
constexpr double borderSlack = 1e-6;

/// Whether a place in a grid, in its voxels, lies within the outer faces of its voxels.
bool isInside(const Eigen::Vector3d &voxel, const GridSize &size)
{
    for (int axis = 0; axis < 3; ++axis) {
        const double half = 0.5 + borderSlack;
        if (!(voxel[axis] >= -half && voxel[axis] <= static_cast<double>(size[axis] - 1) + half))
            return false;
    }
    return true;
}

/// The lattice on one axis of the cube between two outer faces.
void layAxis(FunctionalGrid &grid, int axis, double first, double last)
{
    const int step = grid.resolution;
    const double low = std::max(first, -0.5);
    const double high = std::min(last, cubeSize - 0.5);
    const double slack = 1e-6;
    const int count = std::max(1, static_cast<int>(std::floor((high - low) / step + slack)));
    const double margin = ((high - low) - (count - 1) * step) / 2;
    const int start = static_cast<int>(std::lround(low + margin));
    grid.start[axis] = std::min(std::max(start, 0), cubeSize - 1);
    grid.size[axis] = std::min(count, (cubeSize - 1 - grid.start[axis]) / step + 1);
}

} // namespace

int nearestResolution(const Eigen::Affine3d &gridToCube)
{
    const double side = std::cbrt(std::abs(gridToCube.linear().determinant()));
    // Coarser than the cube is all the same: one sample.
    return static_cast<int>(std::lround(std::min(std::max(side, 1.0), double(cubeSize))));
}

FunctionalGrid layFunctionalGrid(const Eigen::Affine3d &gridToCube, const GridSize &size,
                                 int resolution, const QString &path)
{
    FunctionalGrid grid;
    grid.resolution = resolution;
    grid.sourceSize = size;
    grid.voxelsCut = voxelsOutsideCube(gridToCube, size);
    const Eigen::AlignedBox3d covered = gridBounds(gridToCube, size, 0.5);
    if (grid.voxelsCut == size[0] * size[1] * size[2])
        failOutside(path, covered);

    if (const std::optional<LatticeMap> map = latticeMap(gridToCube, size, resolution)) {
        grid.copied = true;
        grid.box = cutToCube(*map, size);
        if (grid.box.isEmpty())
            failOutside(path, covered);
        grid.start = grid.box.start;
        grid.size = grid.box.size;
    } else {
        for (int axis = 0; axis < 3; ++axis)
            layAxis(grid, axis, covered.min()[axis], covered.max()[axis]);
    }
    const Eigen::Affine3d latticeToCube =
        Eigen::Translation3d(grid.start[0], grid.start[1], grid.start[2]) *
        Eigen::Scaling(double(resolution));
    grid.toSource = gridToCube.inverse() * latticeToCube;
    return grid;
}

bool FunctionalGrid::isRecorded(int i, int j, int k) const
{
    return copied || isInside(toSource * Eigen::Vector3d(i, j, k), sourceSize);
}

std::optional<std::array<int, 3>>
FunctionalGrid::recordedPoint(const Eigen::Vector3d &cubeVoxel) const
{
    std::array<int, 3> point{};
    for (int axis = 0; axis < 3; ++axis) {
        const double index =
            std::floor((cubeVoxel[axis] - start[axis]) / resolution + 0.5 + borderSlack);
        if (!(index >= 0 && index < size[axis]))
            return std::nullopt;
        point[axis] = static_cast<int>(index);
    }
    return isRecorded(point[0], point[1], point[2]) ? std::optional(point) : std::nullopt;
}

VolumeSampler::VolumeSampler(const FunctionalGrid &grid) : m_grid(grid)
{
    if (!grid.copied)
        findPoints();
}

void VolumeSampler::findPoints()
{
    const GridSize &size = m_grid.sourceSize;
    const qint64 stride[3] = {1, size[0], size[0] * size[1]};
    for (int axis = 0; axis < 3; ++axis)
        m_upper[axis] = size[axis] > 1 ? static_cast<qint32>(stride[axis]) : 0;

    m_points.reserve(static_cast<std::size_t>(m_grid.sampleCount()));
    qint32 target = -1;
    for (int k = 0; k < m_grid.size[2]; ++k)
        for (int j = 0; j < m_grid.size[1]; ++j)
            for (int i = 0; i < m_grid.size[0]; ++i) {
                ++target;
                const Eigen::Vector3d voxel = m_grid.toSource * Eigen::Vector3d(i, j, k);
                if (!isInside(voxel, size))
                    continue;
                Point point{target, 0, {0, 0, 0}};
                for (int axis = 0; axis < 3; ++axis) {
                    const double last = static_cast<double>(size[axis] - 1);
                    const double place = std::min(std::max(voxel[axis], 0.0), last);
                    const double lower = std::min(std::floor(place), std::max(last - 1, 0.0));
                    point.source += static_cast<qint32>(static_cast<qint64>(lower) * stride[axis]);
                    point.weight[axis] = static_cast<float>(place - lower);
                }
                m_points.push_back(point);
            }
    m_pointsOutside = m_grid.sampleCount() - static_cast<qint64>(m_points.size());
}

void VolumeSampler::sample(const short *volume, short *sampled) const
{
    copyBox(m_grid.box, volume, sampled,
            {1, m_grid.size[0], qint64(m_grid.size[0]) * m_grid.size[1]},
            [](short value) { return value; });
}

void VolumeSampler::sample(const float *volume, float *sampled) const
{
    if (m_grid.copied) {
        copyBox(m_grid.box, volume, sampled,
                {1, m_grid.size[0], qint64(m_grid.size[0]) * m_grid.size[1]},
                [](float value) { return value; });
        return;
    }
    std::fill(sampled, sampled + m_grid.sampleCount(), 0.0f);
    const auto between = [](float lower, float upper, float weight) {
        return lower + (upper - lower) * weight;
    };
    for (const Point &point : m_points) {
        const float *const lower = volume + point.source;
        const float *const upper = lower + m_upper[2];
        const auto alongX = [&](const float *row) {
            return between(row[0], row[m_upper[0]], point.weight[0]);
        };
        const auto alongY = [&](const float *plane) {
            return between(alongX(plane), alongX(plane + m_upper[1]), point.weight[1]);
        };
        sampled[point.target] = between(alongY(lower), alongY(upper), point.weight[2]);
    }
}

} // namespace corvane
