// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/workbench/run_overlay.h"

#include "host/files/vmr_file.h"

#include <algorithm>
#include <cmath>

namespace corvane
{

namespace
{

/// Gives `take` the samples of each lattice point in turn, time fastest.
template <typename Take>
std::vector<double> ofEachPoint(const VtcFile &vtc, const std::atomic<bool> &isOutdated, Take take)
{
    const VtcInfo &info = vtc.info();
    const qint64 points = info.sampleCount() / info.nrOfVolumes;
    std::vector<double> values;
    values.reserve(static_cast<std::size_t>(points));
    for (qint64 point = 0; point < points; ++point) {
        if (isOutdated)
            return {};
        const qint64 first = point * info.nrOfVolumes;
        values.push_back(info.type == VtcInfo::Short ? take(vtc.shortSamples() + first)
                                                     : take(vtc.floatSamples() + first));
    }
    return values;
}

/// The value that a part of some are below or at. There is at least one.
double percentile(std::vector<double> &some, double part)
{
    const auto nth =
        some.begin() + static_cast<std::ptrdiff_t>(part * static_cast<double>(some.size() - 1));
    std::nth_element(some.begin(), nth, some.end());
    return *nth;
}

/// What the colours go by: values between -least and least have none.
struct Scale {
    double least = 0;
    double low = 0;
    double high = 1;

    bool shows(double value) const
    {
        return std::isfinite(value) && value != 0 && std::abs(value) >= least;
    }
};

Scale scaleOf(const std::vector<double> &values)
{
    Scale scale;
    std::vector<double> some;
    for (const double value : values)
        if (scale.shows(value))
            some.push_back(std::abs(value));
    if (some.empty())
        return scale;
    scale.least = 0.1 * percentile(some, 0.98);
    some.clear();
    std::copy_if(values.begin(), values.end(), std::back_inserter(some),
                 [&scale](double value) { return scale.shows(value); });
    scale.high = percentile(some, 0.98);
    scale.low = percentile(some, 0.02);
    if (!(scale.low < scale.high)) // of one value alone: the light end
        scale.low = scale.high - 1;
    return scale;
}

} // namespace

std::vector<double> meanOfRun(const VtcFile &vtc, const std::atomic<bool> &isOutdated)
{
    const int volumes = vtc.info().nrOfVolumes;
    return ofEachPoint(vtc, isOutdated, [volumes](const auto *samples) {
        double sum = 0;
        for (int volume = 0; volume < volumes; ++volume)
            sum += samples[volume];
        return sum / volumes;
    });
}

std::vector<double> volumeOfRun(const VtcFile &vtc, int volume, const std::atomic<bool> &isOutdated)
{
    return ofEachPoint(vtc, isOutdated, [volume](const auto *samples) {
        return static_cast<double>(samples[volume - 1]);
    });
}

RunLattice latticeOf(const VtcInfo &info)
{
    return {{info.xStart, info.yStart, info.zStart},
            {info.dimX(), info.dimY(), info.dimZ()},
            info.resolution};
}

RunOverlay::RunOverlay(const RunLattice &lattice, std::vector<double> values, ColourMap map)
    : m_size(lattice.size), m_values(std::move(values))
{
    for (std::size_t axis = 0; axis < 3; ++axis)
        for (int coordinate = 0; coordinate < Vmr::size; ++coordinate)
            m_nearest[axis].push_back(nearestSample(coordinate, lattice.start[axis],
                                                    lattice.resolution, lattice.size[axis]));
    const Scale scale = scaleOf(m_values);
    m_colours.reserve(m_values.size());
    for (const double value : m_values) {
        const double share = (value - scale.low) / (scale.high - scale.low);
        m_colours.push_back(scale.shows(value) ? sequentialColour(map, share).rgb() : QRgb(0));
    }
}

qint64 RunOverlay::sampleAt(const CubeVoxel &voxel) const
{
    std::array<qint64, 3> sample{};
    for (std::size_t axis = 0; axis < 3; ++axis) {
        sample[axis] = m_nearest[axis][static_cast<std::size_t>(voxel[axis])];
        if (sample[axis] < 0)
            return -1;
    }
    return sample[0] + m_size[0] * (sample[1] + m_size[1] * sample[2]);
}

std::optional<double> RunOverlay::valueAt(const CubeVoxel &voxel) const
{
    const qint64 sample = sampleAt(voxel);
    return sample >= 0 ? std::optional(m_values[static_cast<std::size_t>(sample)]) : std::nullopt;
}

QRgb RunOverlay::colourAt(const CubeVoxel &voxel) const
{
    const qint64 sample = sampleAt(voxel);
    return sample >= 0 ? m_colours[static_cast<std::size_t>(sample)] : QRgb(0);
}

} // namespace corvane
