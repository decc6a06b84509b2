// SPDX-License-Identifier: GPL-3.0-or-later
//
// Opening an anatomy of 256 x 256 x 256 voxels from .nii.gz and showing it (wanted: below 1.5 s),
// the pieces of that, and moving the cross-hair.
#include "bench/first_paint.h"
#include "host/files/gzip_file.h"
#include "host/files/image_reader.h"
#include "host/import/example_dataset.h"
#include "host/import/resample_anatomy.h"
#include "host/session/session.h"
#include "host/workbench/main_window.h"
#include "host/workbench/voi_overlay.h"
#include "host/workbench/volume_view.h"

#include <QDir>
#include <QElapsedTimer>
#include <QSettings>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>
#include <cstring>
#include <fcntl.h>
#include <nifti/nifti1.h>
#include <unistd.h>

namespace corvane
{

namespace
{

constexpr int length = Vmr::size;

/// A head as a scanner gives it: tissue of some hundreds with noise, weaker noise around it.
std::vector<qint16> headVoxels()
{
    std::vector<qint16> voxels;
    voxels.reserve(std::size_t(length) * length * length);
    quint64 bits = 88172645463325252U;
    const auto square = [](int coordinate) {
        const double part = (coordinate - length / 2) / (0.4 * length);
        return part * part;
    };
    for (int k = 0; k < length; ++k)
        for (int j = 0; j < length; ++j)
            for (int i = 0; i < length; ++i) {
                bits ^= bits << 13;
                bits ^= bits >> 7;
                bits ^= bits << 17;
                const double r = square(i) + square(j) + square(k);
                const int level = r < 0.5 ? 900 : r < 1 ? 600 : 10;
                const int spread = r < 1 ? 63 : 15;
                voxels.push_back(
                    static_cast<qint16>(level + (bits & spread) + (bits >> 8 & spread)));
            }
    return voxels;
}

/// The anatomy, turned so that its axes run to the right, to the front and up, as most do.
QString packedHead()
{
    static const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("head.nii.gz"));
    if (QFile::exists(path))
        return path;
    nifti_1_header header{};
    header.sizeof_hdr = sizeof header;
    const short dim[8] = {3, length, length, length, 1, 1, 1, 1};
    std::memcpy(header.dim, dim, sizeof dim);
    header.datatype = NIFTI_TYPE_INT16;
    header.bitpix = 16;
    header.vox_offset = 352;
    header.sform_code = 1;
    header.srow_x[0] = header.srow_y[1] = header.srow_z[2] = 1;
    header.srow_x[3] = header.srow_y[3] = header.srow_z[3] = -128;
    std::memcpy(header.magic, "n+1", 4);
    const std::vector<qint16> voxels = headVoxels();
    GzipFile file(path);
    file.write(&header, sizeof header);
    file.write("\0\0\0\0", 4);
    file.write(voxels.data(), static_cast<qint64>(voxels.size() * sizeof voxels[0]));
    file.commit();
    return path;
}

/// The settings of the user stay as they are.
void keepSettings()
{
    static const QTemporaryDir settings;
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settings.path());
}

void openAndShow(benchmark::State &state)
{
    keepSettings();
    const QString path = packedHead();
    for (auto _ : state) {
        state.PauseTiming();
        Session session(openForeignAnatomy);
        MainWindow window(session);
        window.show();
        QCoreApplication::processEvents();
        FirstPaint paint(window.findChild<QWidget *>(QStringLiteral("Axial slice")));
        state.ResumeTiming();
        window.openFiles({path});
        paint.wait();
    }
    state.counters["MB packed"] = static_cast<double>(QFileInfo(path).size()) / 1e6;
}
BENCHMARK(openAndShow)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();

void readIt(benchmark::State &state)
{
    const QString path = packedHead();
    for (auto _ : state) {
        QStringList notes;
        benchmark::DoNotOptimize(readImage(path, notes).voxels.data());
    }
}
BENCHMARK(readIt)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();

void bringItOntoTheCube(benchmark::State &state)
{
    QStringList notes;
    const Image3d<float> image = readImage(packedHead(), notes);
    for (auto _ : state)
        benchmark::DoNotOptimize(
            resampleAnatomy(image, QStringLiteral("head"), notes).vmr.voxels.get());
}
BENCHMARK(bringItOntoTheCube)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime();

void findItsWindow(benchmark::State &state)
{
    QStringList notes;
    const Vmr vmr = openAnatomy(packedHead(), notes).vmr;
    for (auto _ : state)
        benchmark::DoNotOptimize(automaticWindow(vmr));
}
BENCHMARK(findItsWindow)->Unit(benchmark::kMillisecond);

/// The example, with its VOIs and its run, in the workbench. Argument: whether the files are taken
/// out of the system's cache before they are opened. Tells the mean and the longest time from the
/// move to the painted slices; the time course follows when its samples are there.
void moveTheCrossHair(benchmark::State &state)
{
    keepSettings();
    static const QTemporaryDir folder;
    const QDir example(folder.path());
    const auto file = [&](const char *ending) {
        return example.filePath(QStringLiteral("example.") + QLatin1String(ending));
    };
    if (!QFile::exists(file("vtc")))
        writeExample(folder.path());
    if (state.range(0) == 1)
        for (const char *ending : {"vmr", "vtc"}) {
            const int descriptor = open(file(ending).toLocal8Bit().constData(), O_RDONLY);
            fsync(descriptor);
            posix_fadvise(descriptor, 0, 0, POSIX_FADV_DONTNEED);
            close(descriptor);
        }

    Session session;
    MainWindow window(session);
    window.show();
    window.openFiles({file("vmr"), file("vtc"), file("voi")});
    auto *const volume = window.findChild<VolumeView *>();
    FirstPaint paint(window.findChild<QWidget *>(QStringLiteral("Axial slice")));
    paint.wait();
    unsigned place = 1;
    double longest = 0;
    for (auto _ : state) {
        place = place * 1664525U + 1013904223U;
        const auto coordinate = [&](int shift) {
            return 60 + static_cast<int>(place >> shift & 127);
        };
        QElapsedTimer timer;
        timer.start();
        volume->setCross({coordinate(8), coordinate(16), coordinate(24)});
        paint.wait();
        longest = std::max(longest, static_cast<double>(timer.nsecsElapsed()) / 1e6);
    }
    state.counters["longest ms"] = longest;
}
BENCHMARK(moveTheCrossHair)
    ->ArgName("cold")
    ->Arg(0)
    ->Arg(1)
    ->Iterations(300)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

/// The work of a click on the box of a VOI.
void markVois(benchmark::State &state)
{
    VoiSet set;
    for (int n = 0; n < 100; ++n) {
        Voi voi;
        for (int v = 0; v < 300; ++v)
            voi.voxels.push_back({30 + v % 10 * 3, 30 + n * 2, 30 + v / 10 * 3});
        set.vois.push_back(voi);
    }
    const std::vector<bool> shown(set.vois.size(), true);
    for (auto _ : state)
        benchmark::DoNotOptimize(VoiOverlay(set, shown).labelAt(std::size_t(0)));
}
BENCHMARK(markVois)->Unit(benchmark::kMillisecond);

} // namespace

} // namespace corvane
