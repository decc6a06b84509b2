// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/import/run_mean.h"

#include "host/files/functional_run.h"
#include "host/files/nifti_stream.h"
#include "host/files/sample_conversion.h"

#include <QDateTime>
#include <QFileInfo>
#include <QMutex>
#include <QMutexLocker>

#include <cmath>

namespace corvane
{

namespace
{

struct KnownMean {
    QString path;
    qint64 bytes = -1;
    QDateTime time;
    Image3d<float> mean;
};

/// Plans are made on threads of their own.
QMutex mutex;
KnownMean &lastMean()
{
    static KnownMean last;
    return last;
}

Image3d<float> readMean(const QString &path, QStringList &notes, const ProgressWatch &watch)
{
    readRunHeader(path, notes);
    NiftiStream run(path);
    const NiftiHeader &header = run.header();
    const qint64 voxels = header.voxelsPerVolume();
    const auto count = static_cast<std::size_t>(voxels);
    std::vector<char> stored(static_cast<std::size_t>(header.bytesPerVolume()));
    std::vector<float> values(count);
    std::vector<double> sums(count);
    std::vector<int> finite(count);
    for (qint64 t = 0; t < header.dim[3]; ++t) {
        run.read(stored.data(), voxels);
        toFloat(header, stored.data(), voxels, values.data());
        for (std::size_t voxel = 0; voxel < count; ++voxel) {
            if (!std::isfinite(values[voxel]))
                continue;
            sums[voxel] += double(values[voxel]);
            ++finite[voxel];
        }
        tellProgress(watch, t + 1, header.dim[3]);
    }
    run.finish(notes);
    Image3d<float> mean;
    mean.size = {header.dim[0], header.dim[1], header.dim[2]};
    mean.toWorld = header.toWorld;
    mean.voxels.resize(count);
    for (std::size_t voxel = 0; voxel < count; ++voxel)
        mean.voxels[voxel] = finite[voxel] > 0 ? float(sums[voxel] / finite[voxel]) : 0;
    return mean;
}

} // namespace

Image3d<float> runMean(const QString &path, QStringList &notes, const ProgressWatch &watch)
{
    const QFileInfo file(path);
    {
        const QMutexLocker lock(&mutex);
        const KnownMean &last = lastMean();
        if (last.path == path && last.bytes == file.size() && last.time == file.lastModified())
            return last.mean;
    }
    Image3d<float> mean = readMean(path, notes, watch);
    const QMutexLocker lock(&mutex);
    lastMean() = {path, file.size(), file.lastModified(), mean};
    return mean;
}

} // namespace corvane
