// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/workbench/import_run_mean.h"

#include "host/files/nifti_stream.h"
#include "host/files/sample_conversion.h"

namespace corvane
{

std::vector<double> meanBeforeImport(const QString &path, const FunctionalGrid &grid,
                                     const std::atomic<bool> &isOutdated)
{
    NiftiStream run(path);
    const NiftiHeader &header = run.header();
    const qint64 voxels = header.voxelsPerVolume();
    std::vector<char> stored(static_cast<std::size_t>(header.bytesPerVolume()));
    std::vector<float> volume(static_cast<std::size_t>(voxels));
    std::vector<double> sum(volume.size());
    for (qint64 n = 0; n < header.dim[3]; ++n) {
        if (isOutdated)
            return {};
        run.read(stored.data(), voxels);
        toFloat(header, stored.data(), voxels, volume.data());
        for (std::size_t voxel = 0; voxel < volume.size(); ++voxel)
            sum[voxel] += double(volume[voxel]);
    }
    for (std::size_t voxel = 0; voxel < volume.size(); ++voxel)
        volume[voxel] = static_cast<float>(sum[voxel] / double(header.dim[3]));
    // The interpolation is linear: that of the mean is the mean of all.
    std::vector<float> sampled(static_cast<std::size_t>(grid.sampleCount()));
    VolumeSampler(grid).sample(volume.data(), sampled.data());
    return {sampled.begin(), sampled.end()};
}

} // namespace corvane
