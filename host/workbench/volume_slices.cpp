// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/workbench/volume_slices.h"

#include "host/workbench/run_overlay.h"
#include "host/workbench/voi_overlay.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <vector>

namespace corvane
{

namespace
{

constexpr int size = Vmr::size;

/// Steps between neighbours along each axis of the cube.
constexpr std::array<std::size_t, 3> strides{1, size, std::size_t(size) * size};

template <typename Action>
auto withSamples(const Vmr &vmr, Action action)
{
    if (vmr.type == Vmr::UChar)
        return action(static_cast<const quint8 *>(vmr.voxels.get()));
    return action(static_cast<const quint16 *>(vmr.voxels.get()));
}

int mixed(int below, int above, int parts)
{
    return (below * (256 - parts) + above * parts) / 256;
}

QRgb tinted(QRgb below, QRgb above, int parts)
{
    return qRgb(mixed(qRed(below), qRed(above), parts), mixed(qGreen(below), qGreen(above), parts),
                mixed(qBlue(below), qBlue(above), parts));
}

CubeVoxel voxelOf(const PlaneAxes &axes, int across, int down, int through)
{
    CubeVoxel voxel{};
    voxel[static_cast<std::size_t>(axes.across)] = across;
    voxel[static_cast<std::size_t>(axes.down)] = down;
    voxel[static_cast<std::size_t>(axes.through)] = through;
    return voxel;
}

/// Counts of the intensities in every row of every slice that is a multiple of `step`, without 0.
std::vector<int> histogram(const Vmr &vmr, std::size_t step)
{
    std::vector<int> counts(vmr.type == Vmr::UChar ? 256 : 65536);
    withSamples(vmr, [&](const auto *samples) {
        for (std::size_t k = 0; k < size; k += step)
            for (std::size_t j = 0; j < size; j += step) {
                const auto *row = samples + j * strides[1] + k * strides[2];
                for (int i = 0; i < size; ++i)
                    ++counts[row[i]];
            }
    });
    counts[0] = 0;
    return counts;
}

qint64 sumOf(const std::vector<int> &counts)
{
    return std::accumulate(counts.begin(), counts.end(), qint64(0));
}

} // namespace

PlaneAxes axesOf(SlicePlane plane)
{
    switch (plane) {
    case SlicePlane::Sagittal:
        return {0, 1, 2};
    case SlicePlane::Coronal:
        return {2, 1, 0};
    case SlicePlane::Axial:
        break;
    }
    return {2, 0, 1};
}

GreyWindow automaticWindow(const Vmr &vmr)
{
    std::vector<int> counts = histogram(vmr, 4);
    // A few voxels may lie between the rows that were looked at.
    if (sumOf(counts) == 0)
        counts = histogram(vmr, 1);
    const qint64 total = sumOf(counts);
    if (total == 0)
        return {};
    const auto percentile = [&](double part) {
        qint64 left = static_cast<qint64>(std::ceil(part * static_cast<double>(total)));
        int intensity = 0;
        while ((left -= counts[static_cast<std::size_t>(intensity)]) > 0)
            ++intensity;
        return intensity;
    };
    // Masks and atlases have no dark end that could be left out: all of their values are meant.
    constexpr int fewValues = 32;
    const bool isOfFew = std::count_if(counts.begin(), counts.end(),
                                       [](int count) { return count > 0; }) <= fewValues;
    const int low = isOfFew ? 0 : percentile(0.01);
    const int high = std::max(percentile(isOfFew ? 1 : 0.995), low + 1);
    return {(low + high) / 2.0, static_cast<double>(high - low)};
}

bool isInCube(const CubeVoxel &voxel)
{
    return std::all_of(voxel.begin(), voxel.end(),
                       [](int coordinate) { return coordinate >= 0 && coordinate < size; });
}

int intensityAt(const Vmr &vmr, const CubeVoxel &voxel)
{
    std::size_t index = 0;
    for (std::size_t axis = 0; axis < 3; ++axis)
        index += strides[axis] * static_cast<std::size_t>(voxel[axis]);
    return withSamples(vmr, [&](const auto *samples) { return static_cast<int>(samples[index]); });
}

QImage sliceImage(const Vmr &vmr, SlicePlane plane, int position, const GreyWindow &window,
                  const SliceLayers &layers)
{
    const PlaneAxes axes = axesOf(plane);
    const std::size_t across = strides[static_cast<std::size_t>(axes.across)];
    const std::size_t down = strides[static_cast<std::size_t>(axes.down)];
    const std::size_t first =
        strides[static_cast<std::size_t>(axes.through)] * static_cast<std::size_t>(position);
    const double lowest = window.level - window.width / 2;
    const double scale = 255 / std::max(window.width, 1e-6);
    const auto partsOf = [](double opacity) {
        return static_cast<int>(std::lround(256 * std::clamp(opacity, 0.0, 1.0)));
    };
    const int voiParts = partsOf(layers.voiOpacity);
    const int runParts = partsOf(layers.runOpacity);

    QImage image(size, size, QImage::Format_RGB32);
    withSamples(vmr, [&](const auto *samples) {
        for (int row = 0; row < size; ++row) {
            auto *const pixels = reinterpret_cast<QRgb *>(image.scanLine(row));
            std::size_t index = first + down * static_cast<std::size_t>(row);
            for (int column = 0; column < size; ++column, index += across) {
                // Rounds, with what the cast cuts off.
                const double shade = (samples[index] - lowest) * scale + 0.5;
                const int grey = static_cast<int>(std::clamp(shade, 0.0, 255.0));
                QRgb colour = qRgb(grey, grey, grey);
                if (layers.run != nullptr) {
                    const QRgb run = layers.run->colourAt(voxelOf(axes, column, row, position));
                    if (run != 0)
                        colour = tinted(colour, run, runParts);
                }
                const quint16 label =
                    layers.vois != nullptr ? layers.vois->labelAt(index) : quint16(0);
                if (label != 0)
                    colour = tinted(colour, layers.vois->colour(label), voiParts);
                pixels[column] = colour;
            }
        }
    });
    return image;
}

QByteArray sliceTable(const Vmr &vmr, SlicePlane plane, int position)
{
    const PlaneAxes axes = axesOf(plane);
    QByteArray table;
    for (int column = 0; column < size; ++column)
        table += '\t' + QByteArray::number(column);
    table += '\n';
    for (int row = 0; row < size; ++row) {
        table += QByteArray::number(row);
        for (int column = 0; column < size; ++column)
            table +=
                '\t' + QByteArray::number(intensityAt(vmr, voxelOf(axes, column, row, position)));
        table += '\n';
    }
    return table;
}

std::optional<CubeBox> headBox(const Vmr &vmr)
{
    const GreyWindow window = automaticWindow(vmr);
    const double threshold = window.level - 0.4 * window.width;
    std::array<std::vector<int>, 3> counts;
    counts.fill(std::vector<int>(size));
    withSamples(vmr, [&](const auto *samples) {
        for (std::size_t k = 0; k < size; ++k)
            for (std::size_t j = 0; j < size; ++j)
                for (std::size_t i = 0; i < size; ++i)
                    if (samples[i + strides[1] * j + strides[2] * k] > threshold) {
                        ++counts[0][i];
                        ++counts[1][j];
                        ++counts[2][k];
                    }
    });
    CubeBox box{};
    for (std::size_t axis = 0; axis < 3; ++axis) {
        // A slice with a few bright voxels of noise is none of the head's.
        const int most = *std::max_element(counts[axis].begin(), counts[axis].end());
        if (most == 0)
            return std::nullopt;
        const auto isOfHead = [most](int count) { return 100 * qint64(count) >= most; };
        const auto first = std::find_if(counts[axis].begin(), counts[axis].end(), isOfHead);
        const auto last = std::find_if(counts[axis].rbegin(), counts[axis].rend(), isOfHead);
        box.low[axis] = static_cast<int>(first - counts[axis].begin());
        box.high[axis] = size - 1 - static_cast<int>(last - counts[axis].rbegin());
    }
    return box;
}

AxisEnds axisEnds(const Vmr &vmr, int axis)
{
    if (!vmr.space)
        return {};
    const auto &direction = vmr.space->directions[static_cast<std::size_t>(axis)];
    const auto largest =
        std::max_element(direction.begin(), direction.end(), [](double left, double right) {
            return std::abs(left) < std::abs(right);
        });
    static const AxisEnds letters[] = {{QStringLiteral("L"), QStringLiteral("R")},
                                       {QStringLiteral("P"), QStringLiteral("A")},
                                       {QStringLiteral("I"), QStringLiteral("S")}};
    const AxisEnds &ends = letters[largest - direction.begin()];
    return *largest > 0 ? ends : AxisEnds{ends.high, ends.low};
}

bool isMirrored(const Vmr &vmr, SlicePlane plane, bool neurological)
{
    const QString left = axisEnds(vmr, axesOf(plane).across).low;
    return left == QLatin1String(neurological ? "R" : "L");
}

} // namespace corvane
