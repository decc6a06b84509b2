// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/workbench/voi_overlay.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

namespace corvane
{

namespace
{

constexpr int size = Vmr::size;

std::size_t indexOf(int i, int j, int k)
{
    const int index = i + size * (j + size * k);
    return static_cast<std::size_t>(index);
}

} // namespace

CubeVoxel cubeVoxel(const VoiSet &set, const std::array<int, 3> &voxel)
{
    if (set.referenceSpace < 3)
        return voxel;
    return {128 - voxel[1], 128 - voxel[2], 128 - voxel[0]};
}

int voxelSpacing(const VoiSet &set)
{
    const std::array<int, 3> *first = nullptr;
    int spacing = 0;
    for (const Voi &voi : set.vois) {
        for (const auto &voxel : voi.voxels) {
            if (first == nullptr)
                first = &voxel;
            for (std::size_t axis = 0; axis < 3; ++axis)
                spacing = std::gcd(spacing, voxel[axis] - (*first)[axis]);
        }
    }
    return std::max(spacing, 1);
}

std::optional<CubeVoxel> centreOf(const VoiSet &set, std::size_t voi)
{
    const auto &voxels = set.vois[voi].voxels;
    if (voxels.empty())
        return std::nullopt;
    std::array<double, 3> mean{};
    for (const auto &voxel : voxels)
        for (std::size_t axis = 0; axis < 3; ++axis)
            mean[axis] += voxel[axis] / static_cast<double>(voxels.size());
    const auto distance = [&mean](const std::array<int, 3> &voxel) {
        return std::hypot(voxel[0] - mean[0], voxel[1] - mean[1], voxel[2] - mean[2]);
    };
    return cubeVoxel(set, *std::min_element(voxels.begin(), voxels.end(),
                                            [&](const auto &left, const auto &right) {
                                                return distance(left) < distance(right);
                                            }));
}

VoiOverlay::VoiOverlay(const VoiSet &set, const std::vector<bool> &shown)
    : m_labels(Vmr::voxelCount)
{
    const int spacing = voxelSpacing(set);
    const std::size_t most = std::min<std::size_t>(set.vois.size(), 65535);
    m_colours.resize(most + 1);
    for (std::size_t n = 0; n < most; ++n) {
        const Voi &voi = set.vois[n];
        m_colours[n + 1] = qRgb(voi.r, voi.g, voi.b);
        if (!shown[n])
            continue;
        for (const auto &voxel : voi.voxels)
            mark(cubeVoxel(set, voxel), spacing, static_cast<quint16>(n + 1));
    }
}

quint16 VoiOverlay::labelAt(const CubeVoxel &voxel) const
{
    return m_labels[indexOf(voxel[0], voxel[1], voxel[2])];
}

void VoiOverlay::mark(const CubeVoxel &centre, int spacing, quint16 label)
{
    // The voxels that a lattice point is the nearest one of, halves upward.
    CubeVoxel low{};
    CubeVoxel high{};
    for (std::size_t axis = 0; axis < 3; ++axis) {
        low[axis] = std::clamp(centre[axis] - spacing / 2, 0, size);
        high[axis] = std::clamp(centre[axis] - spacing / 2 + spacing, 0, size);
    }
    for (int k = low[2]; k < high[2]; ++k)
        for (int j = low[1]; j < high[1]; ++j)
            std::fill(m_labels.begin() + static_cast<std::ptrdiff_t>(indexOf(low[0], j, k)),
                      m_labels.begin() + static_cast<std::ptrdiff_t>(indexOf(high[0], j, k)),
                      label);
}

} // namespace corvane
