// SPDX-License-Identifier: GPL-3.0-or-later
//
// The pieces of an import, on a run of 60 x 72 x 60 voxels.
#include "host/files/gzip_file.h"
#include "host/files/nifti_stream.h"
#include "host/files/sample_conversion.h"
#include "host/files/vtc_writer.h"
#include "host/import/functional_grid.h"
#include "host/import/resample_anatomy.h"

#include <QCoreApplication>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>
#include <cstring>
#include <nifti/nifti1.h>

namespace corvane
{

namespace
{

constexpr int sizeX = 60;
constexpr int sizeY = 72;
constexpr int sizeZ = 60;
constexpr qint64 voxels = qint64(sizeX) * sizeY * sizeZ;
constexpr int volumes = 100;

/// Values as in a brain: a level and some bits of noise.
std::vector<qint16> volumeOfNoise(quint64 seed)
{
    std::vector<qint16> volume(voxels);
    for (qint16 &value : volume) {
        seed = seed * 6364136223846793005U + 1442695040888963407U;
        value = static_cast<qint16>(900 + (seed >> 58));
    }
    return volume;
}

nifti_1_header runHeader()
{
    nifti_1_header header{};
    header.sizeof_hdr = sizeof header;
    const short dim[8] = {4, sizeX, sizeY, sizeZ, volumes, 1, 1, 1};
    std::memcpy(header.dim, dim, sizeof dim);
    header.datatype = NIFTI_TYPE_INT16;
    header.bitpix = 16;
    header.vox_offset = 352;
    header.sform_code = 1;
    header.srow_x[0] = header.srow_y[1] = header.srow_z[2] = 3;
    std::memcpy(header.magic, "n+1", 4);
    return header;
}

QByteArray runStart()
{
    const nifti_1_header header = runHeader();
    return QByteArray(reinterpret_cast<const char *>(&header), sizeof header) + QByteArray(4, '\0');
}

template <typename File>
void writeRun(File &file)
{
    const QByteArray start = runStart();
    file.write(start.constData(), start.size());
    for (int t = 0; t < volumes; ++t) {
        const std::vector<qint16> volume = volumeOfNoise(static_cast<quint64>(t));
        file.write(reinterpret_cast<const char *>(volume.data()), voxels * 2);
    }
    file.commit();
}

void readRun(benchmark::State &state, const QString &path)
{
    std::vector<qint16> volume(voxels);
    for (auto _ : state) {
        NiftiStream stream(path);
        for (int t = 0; t < volumes; ++t)
            stream.read(volume.data(), voxels);
        QStringList notes;
        stream.finish(notes);
    }
    state.SetBytesProcessed(state.iterations() * volumes * voxels * 2);
}

void readPlainRun(benchmark::State &state)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("run.nii"));
    OutputFile file(path);
    writeRun(file);
    readRun(state, path);
}
BENCHMARK(readPlainRun)->Unit(benchmark::kMillisecond);

void readPackedRun(benchmark::State &state)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("run.nii.gz"));
    GzipFile file(path);
    writeRun(file);
    readRun(state, path);
}
BENCHMARK(readPackedRun)->Unit(benchmark::kMillisecond);

/// A grid as a scanner has it, its axes to the right, to the front and up.
FunctionalGrid grid(double shift)
{
    Eigen::Affine3d toCube = Eigen::Affine3d::Identity();
    toCube.linear() << 0, -3, 0, 0, 0, -3, -3, 0, 0;
    toCube.translation() = Eigen::Vector3d(230 + shift, 210, 215);
    return layFunctionalGrid(toCube, {sizeX, sizeY, sizeZ}, 3, QStringLiteral("run"));
}

void copyVolume(benchmark::State &state)
{
    const VolumeSampler sampler(grid(0));
    const std::vector<qint16> volume = volumeOfNoise(1);
    std::vector<short> sampled(voxels);
    for (auto _ : state) {
        sampler.sample(volume.data(), sampled.data());
        benchmark::DoNotOptimize(sampled.data());
    }
    state.SetItemsProcessed(state.iterations() * voxels);
}
BENCHMARK(copyVolume)->Unit(benchmark::kMicrosecond);

void interpolateVolume(benchmark::State &state)
{
    const VolumeSampler sampler(grid(0.5));
    const std::vector<qint16> stored = volumeOfNoise(1);
    const std::vector<float> volume(stored.begin(), stored.end());
    std::vector<float> sampled(voxels);
    for (auto _ : state) {
        sampler.sample(volume.data(), sampled.data());
        benchmark::DoNotOptimize(sampled.data());
    }
    state.SetItemsProcessed(state.iterations() * voxels);
}
BENCHMARK(interpolateVolume)->Unit(benchmark::kMicrosecond);

void checksum(benchmark::State &state)
{
    const std::vector<qint16> volume = volumeOfNoise(1);
    for (auto _ : state) {
        VtcChecksum sum;
        sum.add(volume.data(), voxels, 7, volumes);
        benchmark::DoNotOptimize(sum.value());
    }
    state.SetItemsProcessed(state.iterations() * voxels);
}
BENCHMARK(checksum)->Unit(benchmark::kMicrosecond);

/// Argument: passes over the file.
void writeTimeCourse(benchmark::State &state)
{
    VtcInfo info;
    info.resolution = 3;
    info.xEnd = 3 * sizeX;
    info.yEnd = 3 * sizeY;
    info.zEnd = 3 * sizeZ;
    info.nrOfVolumes = volumes;
    info.repetitionTime = 2;
    const std::vector<qint16> volume = volumeOfNoise(1);
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("run.vtc"));
    for (auto _ : state) {
        VtcWriter writer(path, info, volumes / state.range(0) * voxels * 2);
        for (int t = 0; t < volumes; ++t) {
            std::copy(volume.begin(), volume.end(), writer.shortVolume());
            writer.addVolume();
        }
        writer.commit();
    }
    state.SetBytesProcessed(state.iterations() * volumes * voxels * 2);
}
BENCHMARK(writeTimeCourse)->Arg(1)->Arg(2)->Arg(4)->Unit(benchmark::kMillisecond);

/// Argument: tenths of a millimetre.
void bringAnatomyOntoTheCube(benchmark::State &state)
{
    const double voxel = static_cast<double>(state.range(0)) / 10;
    const auto length = static_cast<qint64>(180 / voxel);
    Image3d<float> image;
    image.size = {length, length, length};
    image.toWorld = Eigen::Translation3d(-90, -90, -90) * Eigen::Scaling(voxel);
    image.voxels.assign(static_cast<std::size_t>(image.voxelCount()), 100);
    for (auto _ : state) {
        QStringList notes;
        benchmark::DoNotOptimize(
            resampleAnatomy(image, QStringLiteral("anatomy"), notes).vmr.voxels.get());
    }
}
BENCHMARK(bringAnatomyOntoTheCube)->Arg(8)->Arg(10)->Arg(20)->Unit(benchmark::kMillisecond);

} // namespace

} // namespace corvane

BENCHMARK_MAIN();
