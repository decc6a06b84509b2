// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/host/module/module_subjects.h"

#include "host/import/example_dataset.h"
#include "tests/host/support/host_files.h"
#include "tests/host/support/program.h"
#include "tests/host/support/recordings.h"

#include <QFileInfo>

#include <algorithm>
#include <random>

namespace corvane
{

namespace
{

/// The samples that are no air, in the order of the file, dealt out to VOIs of equal size.
VoiSet voisOf(const VtcFile &vtc, std::size_t count)
{
    const VtcInfo &info = vtc.info();
    std::vector<std::array<int, 3>> voxels;
    const short *course = vtc.shortSamples();
    for (int k = 0; k < info.dimZ(); ++k)
        for (int j = 0; j < info.dimY(); ++j)
            for (int i = 0; i < info.dimX(); ++i, course += info.nrOfVolumes)
                if (*std::min_element(course, course + info.nrOfVolumes) > 100)
                    voxels.push_back({info.xStart + i * info.resolution,
                                      info.yStart + j * info.resolution,
                                      info.zStart + k * info.resolution});
    VoiSet set;
    for (std::size_t voi = 0; voi < count; ++voi) {
        const auto begin = voxels.begin() + std::ptrdiff_t(voxels.size() * voi / count);
        const auto end = voxels.begin() + std::ptrdiff_t(voxels.size() * (voi + 1) / count);
        set.vois.push_back({QStringLiteral("slab %1").arg(voi), 255, 128, 0, {begin, end}});
    }
    return set;
}

} // namespace

SubjectFiles writeSmallSubject(const TemporaryFolder &folder)
{
    const SubjectFiles files{folder.path("small.vmr"), folder.path("small.vtc"),
                             folder.path("small.voi"), QString()};
    writeVmr(files.vmr, zeroVmr());

    Prt prt;
    prt.name = QStringLiteral("task");
    prt.conditions = {{QStringLiteral("rest"), {{1, 20}, {41, 60}}},
                      {QStringLiteral("task"), {{21, 39}}},
                      {QStringLiteral("cue"), {{40, 40}}}};
    writePrtFile(folder.path("small.prt"), prt);

    VtcInfo info;
    info.xStart = info.yStart = info.zStart = 60;
    info.xEnd = info.yEnd = info.zEnd = 60 + 4 * 3;
    info.resolution = 3;
    info.nrOfVolumes = 60;
    info.repetitionTime = 2;
    info.linkedProtocol = QStringLiteral("small.prt");
    std::mt19937 random(7);
    std::uniform_int_distribution<int> value(500, 1500);
    std::vector<short> samples(static_cast<std::size_t>(info.sampleCount()));
    for (short &sample : samples)
        sample = static_cast<short>(value(random));
    putBytes(files.vtc, vtcBytes(info, samples));

    VoiSet set;
    for (int voi = 0; voi < 6; ++voi) {
        const int x = 60 + 3 * (voi % 4);
        const int y = 60 + 3 * (voi / 4);
        set.vois.push_back(
            {QStringLiteral("area %1").arg(voi), 255, 0, 0, {{{x, y, 60}}, {{x, y, 63}}}});
    }
    writeVoiFile(files.voi, set);
    return files;
}

SubjectFiles writeExampleSubject(const TemporaryFolder &folder)
{
    const QString path = folder.path("example");
    writeExample(path);
    return {path + "/example.vmr", path + "/example.vtc", path + "/example.voi", QString()};
}

bool haveRecordings()
{
    return QFileInfo::exists(recording("haxby2001/run001_events.tsv"));
}

SubjectFiles importRecording(const TemporaryFolder &folder, const QString &run, Events events)
{
    const QString name = events == Events::Imported ? run : run + " without events";
    const QString base = folder.path(name);
    const QString real = recording("haxby2001/") + run;
    QStringList arguments{"import",
                          "--anatomy",
                          recording("haxby2001/mask_25mm_brain.nii.gz"),
                          "--functional",
                          real + "_bold_25mm.nii.gz",
                          "--name",
                          name,
                          "--out",
                          folder.path()};
    if (events == Events::Imported)
        arguments << "--events" << real + "_events.tsv";
    const ProgramRun import = runCorvane(arguments);
    EXPECT_EQ(import.status, 0) << import.errors.constData();
    const VtcFile vtc(base + ".vtc");
    EXPECT_NE(vtc.shortSamples(), nullptr);
    writeVoiFile(base + ".voi", voisOf(vtc, 8));
    return {base + ".vmr", base + ".vtc", base + ".voi", QString()};
}

} // namespace corvane
