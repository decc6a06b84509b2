// SPDX-License-Identifier: GPL-3.0-or-later
//
// The import as a whole: in this process where its report counts, and as a user runs it where its
// exit status, its one line and what it leaves behind count.
#include "host/import/import_name.h"
#include "host/import/write_import.h"
#include "tests/host/support/host_files.h"
#include "tests/host/support/interrupted_program.h"
#include "tests/host/support/nifti_files.h"
#include "tests/host/support/notes.h"
#include "tests/host/support/program.h"
#include "tests/host/support/recordings.h"

#include <cmath>
#include <gmock/gmock.h>
#include <map>
#include <set>

namespace corvane
{

namespace
{

using testing::HasSubstr;
using testing::StartsWith;

/// Where a file of the host's lies in the world.
Eigen::Affine3d worldOfCube(const QString &vmr)
{
    const VmrSpace space = readVmr(vmr).space.value();
    Eigen::Affine3d toWorld = Eigen::Affine3d::Identity();
    for (int axis = 0; axis < 3; ++axis)
        for (int row = 0; row < 3; ++row) {
            toWorld(row, axis) =
                space.directions[static_cast<std::size_t>(axis)][static_cast<std::size_t>(row)];
            toWorld(row, 3) = space.origin[static_cast<std::size_t>(row)];
        }
    return toWorld;
}

/// Where a lattice point of a .vtc stands in the run it was made of, in voxels.
Eigen::Vector3d placeInRun(const VtcInfo &info, const Eigen::Affine3d &cubeToRun, int i, int j,
                           int k)
{
    return cubeToRun * Eigen::Vector3d(info.xStart + info.resolution * i,
                                       info.yStart + info.resolution * j,
                                       info.zStart + info.resolution * k);
}

/// Textbook trilinear interpolation, the outermost voxels reaching half a voxel farther.
double interpolated(const ReferenceImage &run, const Eigen::Vector3d &place, int t)
{
    double weight[3][2];
    int voxel[3][2];
    for (int axis = 0; axis < 3; ++axis) {
        const double last = run.size[static_cast<std::size_t>(axis)] - 1;
        if (place[axis] < -0.5 || place[axis] > last + 0.5)
            return 0;
        const double inside = std::min(std::max(place[axis], 0.0), last);
        const double below = std::floor(inside);
        voxel[axis][0] = static_cast<int>(below);
        voxel[axis][1] = static_cast<int>(std::min(below + 1, last));
        weight[axis][1] = inside - below;
        weight[axis][0] = 1 - weight[axis][1];
    }
    double sum = 0;
    for (int corner = 0; corner < 8; ++corner) {
        const int a = corner & 1;
        const int b = corner >> 1 & 1;
        const int c = corner >> 2 & 1;
        sum += weight[0][a] * weight[1][b] * weight[2][c] *
               run.at(voxel[0][a], voxel[1][b], voxel[2][c], t);
    }
    return sum;
}

/// Whether a place is so near the edge of the recorded field that rounding decides.
bool isOnTheEdge(const ReferenceImage &run, const Eigen::Vector3d &place)
{
    for (int axis = 0; axis < 3; ++axis) {
        const double last = run.size[static_cast<std::size_t>(axis)] - 1;
        if (std::abs(place[axis] + 0.5) < 1e-3 || std::abs(place[axis] - last - 0.5) < 1e-3)
            return true;
    }
    return false;
}

double sampleOf(const VtcFile &vtc, int i, int j, int k, int t)
{
    const VtcInfo &info = vtc.info();
    const int index = t + info.nrOfVolumes * (i + info.dimX() * (j + info.dimY() * k));
    return info.type == VtcInfo::Short ? double(vtc.shortSamples()[index])
                                       : double(vtc.floatSamples()[index]);
}

/// The sample that a voxel of a VOI has, as a load of the VOI finds it.
double sampleOf(const VtcFile &vtc, const std::array<int, 3> &voxel, int t)
{
    const VtcInfo &info = vtc.info();
    const auto index = [&info](int coordinate, int start) {
        return static_cast<int>(std::floor(double(coordinate - start) / info.resolution + 0.5));
    };
    return sampleOf(vtc, index(voxel[0], info.xStart), index(voxel[1], info.yStart),
                    index(voxel[2], info.zStart), t);
}

/// Every sample of a .vtc against the run, through the .vmr that was made with it.
void expectSamplesOfRun(const QString &base, const ReferenceImage &run, bool copied)
{
    const VtcFile vtc(base + QStringLiteral(".vtc"));
    const VtcInfo &info = vtc.info();
    ASSERT_EQ(info.nrOfVolumes, run.size[3]);
    EXPECT_TRUE(verifyVtcChecksum(vtc));
    const Eigen::Affine3d cubeToRun =
        run.toWorld.inverse() * worldOfCube(base + QStringLiteral(".vmr"));
    std::set<std::array<int, 3>> seen;
    int compared = 0;
    for (int k = 0; k < info.dimZ(); ++k)
        for (int j = 0; j < info.dimY(); ++j)
            for (int i = 0; i < info.dimX(); ++i) {
                const Eigen::Vector3d place = placeInRun(info, cubeToRun, i, j, k);
                if (!copied && isOnTheEdge(run, place))
                    continue;
                const std::array<int, 3> nearest{int(std::lround(place[0])),
                                                 int(std::lround(place[1])),
                                                 int(std::lround(place[2]))};
                if (copied) {
                    const Eigen::Vector3d whole(nearest[0], nearest[1], nearest[2]);
                    ASSERT_LT((place - whole).norm(), 0.02);
                    seen.insert(nearest);
                }
                for (int t = 0; t < info.nrOfVolumes; ++t) {
                    const double found = sampleOf(vtc, i, j, k, t);
                    const double expected = copied ? double(static_cast<float>(run.at(
                                                         nearest[0], nearest[1], nearest[2], t)))
                                                   : interpolated(run, place, t);
                    ASSERT_NEAR(found, expected, copied ? 0 : 1e-5 * std::abs(expected) + 1e-2)
                        << i << ' ' << j << ' ' << k << ' ' << t;
                    ++compared;
                }
            }
    EXPECT_GT(compared, info.sampleCount() / 2);
    if (copied) {
        EXPECT_EQ(static_cast<qint64>(seen.size()), info.sampleCount() / info.nrOfVolumes);
    }
}

// ---- made-up recordings

/// An anatomy of 1 mm, 40 x 50 x 45 voxels.
NiftiParts anatomyParts()
{
    NiftiParts parts;
    parts.setSize({40, 50, 45});
    parts.setSpacing(1, -20, -30, -10);
    std::vector<quint8> voxels(40 * 50 * 45);
    for (std::size_t n = 0; n < voxels.size(); ++n)
        voxels[n] = static_cast<quint8>(n % 251);
    setSamples(parts, voxels);
    return parts;
}

/// A run of 3 mm, 8 x 9 x 7 voxels and 6 volumes, inside the anatomy and on its voxels.
NiftiParts runParts()
{
    NiftiParts parts;
    parts.setSize({8, 9, 7, 6});
    parts.setSpacing(3, -12, -20, -5);
    parts.pixdim[4] = 2;
    std::vector<qint16> samples(8 * 9 * 7 * 6);
    for (std::size_t n = 0; n < samples.size(); ++n)
        samples[n] = static_cast<qint16>((n * 7919) % 30000 - 5000);
    setSamples(parts, samples);
    return parts;
}

NiftiParts atlasParts()
{
    NiftiParts parts;
    parts.setSize({8, 9, 7});
    parts.setSpacing(3, -12, -20, -5);
    std::vector<quint8> labels(8 * 9 * 7);
    for (std::size_t n = 0; n < labels.size(); ++n)
        labels[n] = static_cast<quint8>(n % 4);
    setSamples(parts, labels);
    return parts;
}

/// A folder with files to import, and what to do with them.
struct Workplace {
    TemporaryFolder folder;
    ImportRequest request;

    Workplace()
    {
        put("anatomy.nii", anatomyParts());
        put("run.nii.gz", runParts());
        put("atlas.nii", atlasParts());
        putBytes(folder.path("labels.tsv"), "index\tname\n1\tone\n2\ttwo\n3\tthree\n");
        putBytes(folder.path("events.tsv"),
                 "onset\tduration\ttrial_type\n0\t4\trest\n4\t8\ttask\n");
        request.anatomy = folder.path("anatomy.nii");
        request.functional = folder.path("run.nii.gz");
        request.name = QStringLiteral("sub");
        request.folder = folder.path("out");
    }
    void put(const char *name, const NiftiParts &parts) const
    {
        const QByteArray bytes = niftiBytes(parts);
        putBytes(folder.path(name), QByteArray(name).endsWith(".gz") ? gzipped(bytes) : bytes);
    }
    void useAll()
    {
        request.voiSources = {
            {VoiSource::Atlas, folder.path("atlas.nii"), folder.path("labels.tsv")}};
        request.events = folder.path("events.tsv");
    }
    QString base() const { return request.folder + QStringLiteral("/sub"); }
    /// Names in the output folder; empty when there is none.
    QStringList written() const { return namesIn(request.folder); }
    QString outputPath(const char *name) const
    {
        return request.folder + QLatin1Char('/') + QString::fromLatin1(name);
    }
};

ImportReport imported(const Workplace &place)
{
    return writeImport(planImport(place.request));
}

TEST(Import, MakesTheHostsFilesOfAllItIsGiven)
{
    Workplace place;
    place.useAll();
    const ImportReport report = imported(place);
    EXPECT_EQ(joined(report.notes), "");
    EXPECT_EQ(joined(report.summary),
              joined({place.outputPath("sub.vmr") +
                          QStringLiteral(": 40 x 50 x 45 voxels of 1 x 1 x 1 mm, copied"),
                      place.outputPath("sub.voi") +
                          QStringLiteral(": 3 VOIs, 378 functional voxels, 0 VOIs empty"),
                      place.outputPath("sub.prt") + QStringLiteral(": 2 conditions, 2 intervals"),
                      place.outputPath("sub.vtc") +
                          QStringLiteral(": 9 x 7 x 8 samples 3 mm apart, 6 volumes 2 s apart, "
                                         "short, copied")}));
    EXPECT_EQ(place.written(), (QStringList{QStringLiteral("sub.prt"), QStringLiteral("sub.vmr"),
                                            QStringLiteral("sub.voi"), QStringLiteral("sub.vtc")}));
    expectSamplesOfRun(place.base(), readReference(place.request.functional), true);

    const VtcFile vtc(place.outputPath("sub.vtc"));
    EXPECT_EQ(vtc.info().type, VtcInfo::Short);
    EXPECT_EQ(vtc.info().repetitionTime, 2);
    EXPECT_EQ(vtc.info().linkedProtocol, place.outputPath("sub.prt"));

    const Prt prt = readPrtFile(place.outputPath("sub.prt"));
    EXPECT_EQ(prt.name, QStringLiteral("sub"));
    ASSERT_EQ(prt.conditions.size(), 2U);
    EXPECT_EQ(prt.conditions[1].intervals, (std::vector<std::pair<int, int>>{{3, 6}}));
}

/// The voxels of each label, from the files alone.
std::map<int, std::set<std::array<int, 3>>> voxelsOfLabels(const QString &vmr, const QString &atlas)
{
    const ReferenceImage labels = readReference(atlas);
    const Eigen::Affine3d labelsToCube = worldOfCube(vmr).inverse() * labels.toWorld;
    std::map<int, std::set<std::array<int, 3>>> voxels;
    for (int k = 0; k < labels.size[2]; ++k)
        for (int j = 0; j < labels.size[1]; ++j)
            for (int i = 0; i < labels.size[0]; ++i) {
                const int label = static_cast<int>(labels.at(i, j, k));
                if (label == 0)
                    continue;
                const Eigen::Vector3d cube = labelsToCube * Eigen::Vector3d(i, j, k);
                voxels[label].insert({int(std::lround(cube[0])), int(std::lround(cube[1])),
                                      int(std::lround(cube[2]))});
            }
    return voxels;
}

void expectVoisOfAtlas(const QString &base, const QString &atlas)
{
    const VoiSet set = readVoiFile(base + QStringLiteral(".voi"));
    const auto expected = voxelsOfLabels(base + QStringLiteral(".vmr"), atlas);
    ASSERT_EQ(set.vois.size(), expected.size());
    auto label = expected.begin();
    for (const Voi &voi : set.vois) {
        const std::set<std::array<int, 3>> found(voi.voxels.begin(), voi.voxels.end());
        EXPECT_EQ(found, label->second) << label->first;
        EXPECT_EQ(found.size(), voi.voxels.size());
        ++label;
    }
}

TEST(Import, PutsVoiVoxelsWhereTheAtlasHasThem)
{
    Workplace place;
    place.useAll();
    imported(place);
    expectVoisOfAtlas(place.base(), place.request.voiSources.front().file);
    const VoiSet set = readVoiFile(place.outputPath("sub.voi"));
    ASSERT_EQ(set.vois.size(), 3U);
    EXPECT_EQ(set.vois[2].name, QStringLiteral("three"));
}

TEST(Import, WritesEveryVoxelOfOneMillimetreWhenAsked)
{
    Workplace place;
    place.useAll();
    place.request.voiGrid = VoiGrid::Anatomy;
    imported(place);
    std::size_t voxels = 0;
    for (const Voi &voi : readVoiFile(place.outputPath("sub.voi")).vois)
        voxels += voi.voxels.size();
    EXPECT_EQ(voxels, 378U * 27);
}

TEST(Import, LeavesOutWhatItIsNotGiven)
{
    Workplace place;
    imported(place);
    EXPECT_EQ(place.written(), (QStringList{QStringLiteral("sub.vmr"), QStringLiteral("sub.vtc")}));
    EXPECT_EQ(VtcFile(place.outputPath("sub.vtc")).info().linkedProtocol, QString());
}

TEST(Import, ReplacesOlderFilesAndLeavesOthers)
{
    Workplace place;
    ASSERT_TRUE(QDir().mkpath(place.request.folder));
    putBytes(place.outputPath("sub.vtc"), "older");
    putBytes(place.outputPath("mine.txt"), "mine");
    imported(place);
    EXPECT_EQ(VtcFile(place.outputPath("sub.vtc")).info().nrOfVolumes, 6);
    EXPECT_EQ(bytesOf(place.outputPath("mine.txt")), "mine");
}

TEST(Import, PlansWhatItWritesAndWritesNothingBefore)
{
    Workplace place;
    place.useAll();
    const ImportPlan plan = planImport(place.request);
    EXPECT_FALSE(QFile::exists(place.request.folder));
    QStringList planned;
    for (const PlannedFile &file : plan.files)
        planned += place.request.folder + QLatin1Char('/') + file.name;
    EXPECT_EQ(planned, (QStringList{place.outputPath("sub.vmr"), place.outputPath("sub.voi"),
                                    place.outputPath("sub.prt"), place.outputPath("sub.vtc")}));
    EXPECT_EQ(plan.volumes(), 6);
    EXPECT_EQ(plan.vois.vois.size(), plan.labelCounts.size());
    // More than once, if need be.
    for (int n = 0; n < 2; ++n)
        EXPECT_EQ(writeImport(plan).files, planned);
    EXPECT_EQ(readVoiFile(place.outputPath("sub.voi")), plan.vois);
}

TEST(Import, RefusesARunThatHasChangedSinceItWasPlanned)
{
    Workplace place;
    const ImportPlan plan = planImport(place.request);
    NiftiParts parts = runParts();
    parts.sform[0][3] += 3;
    place.put("run.nii.gz", parts);
    EXPECT_THAT(errorOf([&] { writeImport(plan); }),
                HasSubstr("run.nii.gz: header: found another run than a moment ago"));
    EXPECT_FALSE(QFile::exists(place.request.folder));
}

TEST(Import, LeavesNothingWhenItsWatchStopsIt)
{
    Workplace place;
    for (const qint64 last : {0, 3}) {
        const ProgressWatch watch = [last](qint64 done, qint64 total) {
            EXPECT_EQ(total, 6);
            return done < last;
        };
        EXPECT_THROW(writeImport(planImport(place.request), watch), WorkStopped);
        EXPECT_FALSE(QFile::exists(place.request.folder));
    }
}

TEST(Import, TakesNamesOfFilesAsLongAsTheFileSystemDoes)
{
    constexpr int longest = 255; // bytes
    Workplace place;
    place.useAll();
    place.request.name = QString(longest - 4, QLatin1Char('n'));
    EXPECT_EQ(imported(place).files.size(), 4);
    EXPECT_EQ(place.written().size(), 4);
    place.request.name += QLatin1Char('n');
    EXPECT_THAT(errorOf([&] { imported(place); }),
                HasSubstr(".vmr: writing: found File name too long, expected a place where a file "
                          "can be written"));
    EXPECT_EQ(place.written().size(), 4);
}

TEST(Import, SaysADoubtOnce)
{
    Workplace place;
    NiftiParts both = atlasParts();
    both.sformCode = 0;
    place.put("both.nii", both);
    place.request.anatomy = place.folder.path("both.nii");
    place.request.voiSources = {{VoiSource::Atlas, place.request.anatomy}};
    const ImportReport report = imported(place);
    EXPECT_EQ(report.notes.filter(QStringLiteral("the header tells no orientation")),
              QStringList{place.request.anatomy +
                          QStringLiteral(": the header tells no orientation: its axes are taken to "
                                         "run to the right, to the front and up")});
}

TEST(Import, RemovesWhatItMadeBeforeUnderTheSameNameOnly)
{
    Workplace place;
    place.useAll();
    imported(place);
    place.request.name = QStringLiteral("other");
    imported(place);
    EXPECT_EQ(place.written().size(), 8);
    // A run of a task becomes one without: its protocol goes, that of the other run stays.
    place.request.events.clear();
    const ImportReport report = imported(place);
    EXPECT_EQ(joined(report.notes), "");
    EXPECT_EQ(joined(place.written()), "other.vmr\nother.voi\nother.vtc\nsub.prt\nsub.vmr\n"
                                       "sub.voi\nsub.vtc");
}

// ---- how samples come over

struct RunCase {
    const char *name;
    void (*change)(NiftiParts &run);
    std::optional<int> resolution;
    VtcInfo::SampleType type;
    bool copied;
};

void PrintTo(const RunCase &run, std::ostream *stream)
{
    *stream << run.name;
}

template <typename Sample>
void convertTo(NiftiParts &parts)
{
    std::vector<Sample> samples(8 * 9 * 7 * 6);
    for (std::size_t n = 0; n < samples.size(); ++n)
        samples[n] = static_cast<Sample>(n % 120);
    setSamples(parts, samples);
}

class Runs : public testing::TestWithParam<RunCase>
{
};

TEST_P(Runs, ComeOverSampleBySample)
{
    Workplace place;
    NiftiParts parts = runParts();
    GetParam().change(parts);
    place.put("run.nii.gz", parts);
    place.request.resolution = GetParam().resolution;
    const ImportReport report = imported(place);
    const VtcFile vtc(place.outputPath("sub.vtc"));
    EXPECT_EQ(vtc.info().type, GetParam().type);
    EXPECT_THAT(report.summary.last().toStdString(),
                testing::EndsWith(GetParam().copied ? "copied" : " mm"));
    if (!parts.bigEndian)
        expectSamplesOfRun(place.base(), readReference(place.request.functional),
                           GetParam().copied);
}

void turnedAndFlipped(NiftiParts &run)
{
    // First axis up, second to the left, third to the back.
    run.sform = {{{0, -3, 0, 10}, {0, 0, -3, 10}, {3, 0, 0, -5}}};
}

void halfAVoxelOff(NiftiParts &run)
{
    run.sform[0][3] += 0.5;
}

void oblique(NiftiParts &run)
{
    const double c = std::cos(0.2);
    const double s = std::sin(0.2);
    run.sform = {{{3 * c, -3 * s, 0, -8}, {3 * s, 3 * c, 0, -22}, {0, 0, 3.3, -5}}};
}

INSTANTIATE_TEST_SUITE_P(
    Table, Runs,
    testing::Values(
        RunCase{"OnTheLattice", [](NiftiParts &) {}, {}, VtcInfo::Short, true},
        RunCase{"SecondVersion", [](NiftiParts &p) { p.version = 2; }, {}, VtcInfo::Short, true},
        RunCase{"TurnedAndFlipped", turnedAndFlipped, {}, VtcInfo::Short, true},
        RunCase{"Bytes", convertTo<quint8>, {}, VtcInfo::Short, true},
        RunCase{"Floats", convertTo<float>, {}, VtcInfo::Float, true},
        RunCase{"ScaledIntegers",
                [](NiftiParts &p) {
                    p.slope = 0.01;
                    p.intercept = 100;
                },
                {},
                VtcInfo::Float,
                true},
        RunCase{"HalfAVoxelOff", halfAVoxelOff, {}, VtcInfo::Float, false},
        RunCase{"Oblique", oblique, {}, VtcInfo::Float, false},
        RunCase{"OtherResolution", [](NiftiParts &) {}, 2, VtcInfo::Float, false},
        RunCase{"OneMillimetre", [](NiftiParts &) {}, 1, VtcInfo::Float, false}),
    [](const testing::TestParamInfo<RunCase> &run) { return run.param.name; });

TEST(Import, ReadsBothOrdersOfBytesAlike)
{
    Workplace place;
    imported(place);
    const QString checksum = VtcFile(place.outputPath("sub.vtc")).info().checksum;
    NiftiParts parts = runParts();
    const QByteArray little = parts.data;
    parts.bigEndian = true;
    parts.data.clear();
    for (int n = 0; n < little.size(); n += 2)
        parts.data += numberBytes(get<qint16>(little, n), true);
    place.put("run.nii.gz", parts);
    imported(place);
    EXPECT_EQ(VtcFile(place.outputPath("sub.vtc")).info().checksum, checksum);
}

TEST(Import, CopiesARunAlongAnAnatomyThatIsTurned)
{
    Workplace place;
    const double c = std::cos(0.3);
    const double s = std::sin(0.3);
    NiftiParts anatomy = anatomyParts();
    anatomy.sform = {{{c, -s, 0, -10}, {s, c, 0, -20}, {0, 0, 1, -10}}};
    place.put("anatomy.nii", anatomy);
    NiftiParts run = runParts();
    run.sform = {{{2 * c, -2 * s, 0, -10}, {2 * s, 2 * c, 0, -20}, {0, 0, 2, -6}}};
    place.put("run.nii.gz", run);
    const ImportReport report = imported(place);
    EXPECT_THAT(report.summary.last().toStdString(), HasSubstr("samples 2 mm apart"));
    expectSamplesOfRun(place.base(), readReference(place.request.functional), true);
}

/// The mean of each VOI at a volume; not a number for an empty one.
std::vector<double> voiMeans(const QString &base, int t)
{
    const VtcFile vtc(base + QStringLiteral(".vtc"));
    std::vector<double> means;
    for (const Voi &voi : readVoiFile(base + QStringLiteral(".voi")).vois) {
        double sum = 0;
        for (const std::array<int, 3> &voxel : voi.voxels)
            sum += sampleOf(vtc, voxel, t);
        means.push_back(sum / static_cast<double>(voi.voxels.size()));
    }
    return means;
}

TEST(Import, KeepsTheUnrecordedCornersOfAnObliqueRunOutOfTheVois)
{
    Workplace place;
    NiftiParts run = runParts();
    oblique(run);
    setSamples(run, std::vector<qint16>(8 * 9 * 7 * 6, 1000));
    place.put("run.nii.gz", run);
    // Labels in stripes over all of the anatomy.
    NiftiParts atlas = anatomyParts();
    std::vector<quint8> labels;
    for (int k = 0; k < 45; ++k)
        for (int j = 0; j < 50; ++j)
            for (int i = 0; i < 40; ++i)
                labels.push_back(static_cast<quint8>(1 + i / 8));
    setSamples(atlas, labels);
    place.put("atlas.nii", atlas);
    place.request.voiSources = {{VoiSource::Atlas, place.folder.path("atlas.nii")}};
    for (const VoiGrid voiGrid : {VoiGrid::Functional, VoiGrid::Anatomy}) {
        place.request.voiGrid = voiGrid;
        const ImportPlan plan = planImport(place.request);
        EXPECT_THAT(joined(plan.notes), HasSubstr("their samples are 0 and no VOI holds them"));
        imported(place);
        int means = 0;
        for (const double mean : voiMeans(place.base(), 3))
            if (!std::isnan(mean)) {
                EXPECT_NEAR(mean, 1000, 0.01);
                ++means;
            }
        EXPECT_GE(means, 4);
        for (const LabelCount &count : plan.labelCounts)
            EXPECT_LT(count.insideRun, count.inAtlas);
    }
}

// ---- what is said

TEST(Import, SaysItsDoubts)
{
    struct Case {
        const char *name;
        void (*change)(NiftiParts &run);
        const char *note;
    };
    for (const Case &doubt : {
             Case{"forms",
                  [](NiftiParts &p) {
                      p.qformCode = 1;
                      p.pixdim[0] = 1;
                      p.qform = {0, 0, 0, -12, -17, -5};
                  },
                  "sform and qform disagree by up to 3.0 mm: the sform is used"},
             Case{"no form", [](NiftiParts &p) { p.sformCode = 0; },
                  "the header tells no orientation: its axes are taken to run to the right, to the "
                  "front and up"},
             Case{"no overlap", [](NiftiParts &p) { p.sform[0][3] = 60; },
                  "the run does not overlap the anatomy"},
             Case{"cut", [](NiftiParts &p) { p.sform[0][3] = 120; },
                  "315 of 504 voxels lie outside the cube of 256 mm and are cut off"},
             Case{"no unit", [](NiftiParts &p) { p.units = 2; },
                  "the header gives the repetition time without a unit: it is taken for 2 s"},
             Case{"slow", [](NiftiParts &p) { p.pixdim[4] = 2000; },
                  "the repetition time of 2000 s is unusual; --tr SECONDS gives another"},
             Case{"more bytes", [](NiftiParts &p) { p.data += "some more"; },
                  "9 bytes behind the last volume are left out"},
             Case{"broken",
                  [](NiftiParts &p) {
                      std::vector<float> samples(8 * 9 * 7 * 6, 1);
                      samples[5] = std::nanf("");
                      samples[3000] = std::numeric_limits<float>::infinity();
                      setSamples(p, samples);
                  },
                  "2 samples are not finite numbers, nor are the means of VOIs that hold them"},
             Case{"turned out of its box", oblique,
                  "lattice points lie outside what was recorded: their samples are 0 and no VOI "
                  "holds them"},
         }) {
        Workplace place;
        NiftiParts parts = runParts();
        doubt.change(parts);
        place.put("run.nii.gz", parts);
        const ImportReport report = imported(place);
        EXPECT_THAT(joined(report.notes), HasSubstr(doubt.note)) << doubt.name;
        EXPECT_THAT(joined(report.notes), StartsWith(place.request.functional.toStdString()))
            << doubt.name;
    }
}

TEST(Import, SaysAnAtlasOnAnotherGrid)
{
    Workplace place;
    place.useAll();
    NiftiParts atlas = atlasParts();
    atlas.setSpacing(2, -12, -20, -5);
    place.put("atlas.nii", atlas);
    EXPECT_THAT(joined(imported(place).notes),
                StartsWith(place.request.voiSources.front().file.toStdString() +
                           ": the atlas (8 x 9 x 7 voxels of 2 x 2 x 2 mm) has another grid than "
                           "the run (8 x 9 x 7 voxels of 3 x 3 x 3 mm): its labels are taken by "
                           "nearest neighbour"));
}

TEST(Import, TakesTheRepetitionTimeThatItIsTold)
{
    Workplace place;
    place.request.repetitionTime = 0.72;
    const ImportReport report = imported(place);
    EXPECT_EQ(joined(report.notes),
              place.request.functional.toStdString() +
                  ": the repetition time is 0.72 s as given, not 2 s as in the header");
    EXPECT_EQ(VtcFile(place.outputPath("sub.vtc")).info().repetitionTime, 0.72);

    NiftiParts parts = runParts();
    parts.pixdim[4] = 0;
    place.put("run.nii.gz", parts);
    EXPECT_EQ(joined(imported(place).notes), "");
}

TEST(Import, NamesItsFilesAfterTheRun)
{
    EXPECT_EQ(defaultImportName(QStringLiteral("/a/sub-01_bold.nii.gz")),
              QStringLiteral("sub-01_bold"));
    EXPECT_EQ(defaultImportName(QStringLiteral("run.1.NII")), QStringLiteral("run.1"));
    EXPECT_EQ(defaultImportName(QStringLiteral("x.nii")), QStringLiteral("x"));
    EXPECT_EQ(defaultImportName(QStringLiteral("odd")), QStringLiteral("odd"));
    EXPECT_TRUE(isImportName(QString::fromUtf8("größe.1")));
    for (const char *none : {"", "a/b", "a\nb"})
        EXPECT_FALSE(isImportName(QString::fromLatin1(none))) << none;
}

// ---- recordings

/// A grey anatomy of 1 mm around what a run covers: the recordings come without one.
NiftiParts anatomyAround(const ReferenceImage &run)
{
    Eigen::AlignedBox3d bounds;
    for (int corner = 0; corner < 8; ++corner)
        bounds.extend(run.toWorld * Eigen::Vector3d(corner & 1 ? run.size[0] - 1 : 0,
                                                    corner & 2 ? run.size[1] - 1 : 0,
                                                    corner & 4 ? run.size[2] - 1 : 0));
    NiftiParts parts;
    const Eigen::Vector3d lengths = bounds.sizes();
    parts.setSize({static_cast<int>(lengths[0]) + 1, static_cast<int>(lengths[1]) + 1,
                   static_cast<int>(lengths[2]) + 1});
    parts.setSpacing(1, std::floor(bounds.min()[0]), std::floor(bounds.min()[1]),
                     std::floor(bounds.min()[2]));
    setSamples(parts, std::vector<quint8>(static_cast<std::size_t>(parts.sampleCount()), 100));
    return parts;
}

struct RecordingCase {
    const char *file;
    std::optional<double> repetitionTime;
    double seconds;
    VtcInfo::SampleType type;
    bool copied;
};

void PrintTo(const RecordingCase &recordingCase, std::ostream *stream)
{
    *stream << recordingCase.file;
}

class Recordings : public testing::TestWithParam<RecordingCase>
{
};

TEST_P(Recordings, ComeOverSampleBySample)
{
    const RecordingCase &wanted = GetParam();
    if (!QFile::exists(recording(wanted.file)))
        GTEST_SKIP() << "no recordings in " << referenceFolder();
    const ReferenceImage run = readReference(recording(wanted.file));
    Workplace place;
    place.put("anatomy.nii", anatomyAround(run));
    place.request.functional = recording(wanted.file);
    place.request.repetitionTime = wanted.repetitionTime;
    imported(place);
    const VtcInfo info = VtcFile(place.outputPath("sub.vtc")).info();
    EXPECT_EQ(info.repetitionTime, wanted.seconds);
    EXPECT_EQ(info.type, wanted.type);
    expectSamplesOfRun(place.base(), run, wanted.copied);
}

INSTANTIATE_TEST_SUITE_P(
    Files, Recordings,
    testing::Values(
        RecordingCase{"haxby2001/run001_bold_25mm.nii.gz", {}, 2.5, VtcInfo::Float, false},
        RecordingCase{"nitime/fmri1.nii.gz", {}, 1.35, VtcInfo::Float, false},
        RecordingCase{"nibabel/functional.nii", {}, 2, VtcInfo::Float, false},
        RecordingCase{"nibabel/example4d.nii.gz", 2.0, 2, VtcInfo::Float, false},
        RecordingCase{"nibabel/example_nifti2.nii.gz", 2.0, 2, VtcInfo::Float, false}),
    [](const testing::TestParamInfo<RecordingCase> &file) {
        QString name = QString::fromLatin1(file.param.file);
        return name.remove(QRegExp(QStringLiteral("[^A-Za-z0-9]"))).toStdString();
    });

TEST(TiltedRecording, HasNoVoiWithWhatItDidNotRecord)
{
    const QString file = recording("nitime/fmri1.nii.gz");
    if (!QFile::exists(file))
        GTEST_SKIP() << "no recordings in " << referenceFolder();
    const ReferenceImage run = readReference(file);
    Workplace place;
    NiftiParts anatomy = anatomyAround(run);
    place.put("anatomy.nii", anatomy);
    setSamples(anatomy, std::vector<quint8>(static_cast<std::size_t>(anatomy.sampleCount()), 1));
    place.put("atlas.nii", anatomy);
    place.request.functional = file;
    place.request.voiSources = {{VoiSource::Atlas, place.folder.path("atlas.nii")}};
    imported(place);
    const VtcInfo info = VtcFile(place.outputPath("sub.vtc")).info();
    const VoiSet set = readVoiFile(place.outputPath("sub.voi"));
    ASSERT_EQ(set.vois.size(), 1U);
    EXPECT_GT(set.vois[0].voxels.size(), 1000U);
    const Eigen::Affine3d cubeToRun =
        run.toWorld.inverse() * worldOfCube(place.outputPath("sub.vmr"));
    for (const std::array<int, 3> &voxel : set.vois[0].voxels) {
        const Eigen::Vector3d inRun = cubeToRun * Eigen::Vector3d(voxel[0], voxel[1], voxel[2]);
        for (int axis = 0; axis < 3; ++axis) {
            EXPECT_GT(inRun[axis], -0.501);
            EXPECT_LT(inRun[axis], run.size[static_cast<std::size_t>(axis)] - 0.499);
        }
    }
    EXPECT_EQ(info.nrOfVolumes, run.size[3]);
}

TEST(WholeBrainRecording, ComesOverWithItsEventsAndMasks)
{
    if (!QFile::exists(recording("haxby2001/run001_bold_25mm.nii.gz")))
        GTEST_SKIP() << "no recordings in " << referenceFolder();
    for (const char *mask : {"gray", "white", "vt", "hoc"}) {
        Workplace place;
        place.request.anatomy = recording("haxby2001/mask_25mm_brain.nii.gz");
        place.request.functional = recording("haxby2001/run001_bold_25mm.nii.gz");
        place.request.events = recording("haxby2001/run001_events.tsv");
        place.request.voiSources = {{VoiSource::Atlas, recording("haxby2001/mask_25mm_") +
                                                           QString::fromLatin1(mask) +
                                                           QStringLiteral(".nii.gz")}};
        const ImportReport report = imported(place);
        EXPECT_EQ(joined(report.notes), "");
        expectSamplesOfRun(place.base(), readReference(place.request.functional), true);
        expectVoisOfAtlas(place.base(), place.request.voiSources.front().file);
        EXPECT_EQ(readPrtFile(place.outputPath("sub.prt")).conditions.size(), 8U);
    }
}

// ---- the command

QStringList commandLine(const Workplace &place, const QStringList &more = {})
{
    return QStringList{QStringLiteral("import"), QStringLiteral("--anatomy"),
                       place.request.anatomy,    QStringLiteral("--functional"),
                       place.request.functional, QStringLiteral("--out"),
                       place.request.folder} +
           more;
}

/// A run that must end with status 1, one line, and nothing left behind.
void expectRefused(const Workplace &place, const ProgramRun &run, const std::string &says)
{
    EXPECT_EQ(run.status, 1) << run.errors.constData();
    EXPECT_EQ(run.errorLines(), 1) << run.errors.constData();
    EXPECT_THAT(run.errors.toStdString(), HasSubstr(says));
    EXPECT_EQ(run.output, "");
    EXPECT_FALSE(QFile::exists(place.request.folder));
}

TEST(ImportCommand, ImportsAndTellsWhat)
{
    const Workplace place;
    const ProgramRun run = runCorvane(commandLine(
        place,
        {QStringLiteral("--atlas"), place.folder.path("atlas.nii"), QStringLiteral("--labels"),
         place.folder.path("labels.tsv"), QStringLiteral("--events"),
         place.folder.path("events.tsv"), QStringLiteral("--name"), QString::fromUtf8("größe"),
         QStringLiteral("--tr"), QStringLiteral("2"), QStringLiteral("--resolution"),
         QStringLiteral("3"), QStringLiteral("--voi-grid"), QStringLiteral("functional")}));
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.errors, "");
    EXPECT_EQ(run.output.count('\n'), 4);
    EXPECT_EQ(place.written().size(), 4);
    EXPECT_EQ(VtcFile(place.request.folder + QString::fromUtf8("/größe.vtc")).info().nrOfVolumes,
              6);
}

TEST(ImportCommand, SaysNotesOnStandardErrorOneLineEach)
{
    const Workplace place;
    NiftiParts parts = runParts();
    parts.units = 2;
    parts.sform[0][3] = 60;
    place.put("run.nii.gz", parts);
    const ProgramRun run = runCorvane(commandLine(place));
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.errorLines(), 2) << run.errors.constData();
    EXPECT_EQ(run.output.count('\n'), 2);
    EXPECT_EQ(place.written(), (QStringList{QStringLiteral("run.vmr"), QStringLiteral("run.vtc")}));
}

struct BadRun {
    const char *name;
    const char *file; ///< which of the files is bad
    QByteArray bytes;
    std::string says;
};

void PrintTo(const BadRun &run, std::ostream *stream)
{
    *stream << run.name;
}

class BadInputFiles : public testing::TestWithParam<BadRun>
{
};

TEST_P(BadInputFiles, EndWithStatus1OneLineAndNothingWritten)
{
    const Workplace place;
    const QString path = place.folder.path(GetParam().file);
    putBytes(path, GetParam().bytes);
    const ProgramRun run = runCorvane(
        commandLine(place, {QStringLiteral("--atlas"), place.folder.path("atlas.nii"),
                            QStringLiteral("--labels"), place.folder.path("labels.tsv"),
                            QStringLiteral("--events"), place.folder.path("events.tsv")}));
    expectRefused(place, run, path.toStdString() + ": " + GetParam().says);
}

template <typename Change>
QByteArray changedRun(Change change)
{
    NiftiParts parts = runParts();
    change(parts);
    return niftiBytes(parts);
}

template <typename Change>
QByteArray changedAtlas(Change change)
{
    NiftiParts parts = atlasParts();
    change(parts);
    return niftiBytes(parts);
}

const double notANumber = std::numeric_limits<double>::quiet_NaN();

std::vector<BadRun> badRuns()
{
    const QByteArray run = niftiBytes(runParts());
    const QByteArray packed = gzipped(run);
    const QByteArray anatomy = niftiBytes(anatomyParts());
    return {
        {"EmptyRun", "run.nii.gz", "", "header: found an empty file, expected a NIfTI file"},
        {"RunThatIsNoNifti", "run.nii.gz", "onset\tduration\n", "header: found \"onse\", expected"},
        {"TruncatedRun", "run.nii.gz", run.left(run.size() - 1000), "header, dim: found 8 x 9 x 7"},
        {"TruncatedPackedRun", "run.nii.gz", packed.left(packed.size() / 2),
         "byte " + std::to_string(packed.size() / 2) + ": found the end of the file, expected"},
        {"PackedTruncatedRun", "run.nii.gz", gzipped(run.left(run.size() - 1008)),
         "samples: found 5040 bytes, 5 complete volumes, expected 6048 bytes, 6 volumes"},
        {"OversizedRun", "run.nii.gz", run + QByteArray(1008, '\0'),
         "samples: found another volume behind the last one, expected 6048 bytes"},
        {"RunOfHugeDimensions", "run.nii.gz", changedRun([](NiftiParts &p) {
             p.setSize({30000, 30000, 30000, 30000});
         }),
         "header, dim: found 30000 x 30000 x 30000 x 30000 samples of 2 bytes, expected at most"},
        {"RunOfThreeDimensions", "run.nii.gz", changedRun([](NiftiParts &p) {
             p.setSize({8, 9, 42});
         }),
         "header, dim: found one volume, expected 4 dimensions, two or more volumes"},
        {"RunOfOneVolume", "run.nii.gz", changedRun([](NiftiParts &p) {
             p.setSize({8, 9, 42, 1});
         }),
         "header, dim: found one volume, expected 4 dimensions"},
        {"RunOfFiveDimensions", "run.nii.gz", changedRun([](NiftiParts &p) {
             p.setSize({8, 9, 7, 3, 2});
         }),
         "header, dim: found 5 dimensions, expected 4 dimensions"},
        {"RunWithoutDimensions", "run.nii.gz", changedRun([](NiftiParts &p) { p.dim[0] = 0; }),
         "header, dim[0]: found 0 dimensions, expected 1 to 7"},
        {"RunWithoutPlace", "run.nii.gz",
         changedRun([](NiftiParts &p) { p.sform[0][0] = notANumber; }),
         "header, sform: found a value that is no finite number, expected finite numbers"},
        {"RunWithoutRepetitionTime", "run.nii.gz",
         changedRun([](NiftiParts &p) { p.pixdim[4] = 0; }),
         "header, pixdim[4]: found repetition time 0, expected a time above 0, or --tr SECONDS"},
        {"RunCountedInHertz", "run.nii.gz", changedRun([](NiftiParts &p) { p.units = 2 | 32; }),
         "header, pixdim[4]: found repetition time 2 in a unit that is not one of time, expected"},
        {"RunFarAway", "run.nii.gz", changedRun([](NiftiParts &p) { p.sform[2][3] = 5000; }),
         "position relative to the anatomy: found a run that covers voxels"},
        {"EmptyAnatomy", "anatomy.nii", "", "header: found an empty file, expected a NIfTI file"},
        {"TruncatedAnatomy", "anatomy.nii", anatomy.left(5000), "header, dim: found 40 x 50 x 45"},
        {"OversizedAnatomy", "anatomy.nii", anatomy + QByteArray(90000, '\0'),
         "samples: found another volume behind the last one, expected 90000 bytes"},
        {"AnatomyOfFourDimensions", "anatomy.nii", run,
         "header: found 4 dimensions, expected 3, one volume"},
        {"AnatomyThatIsNoImage", "anatomy.nii", "\x89PNG\r\n\x1a\n\0\0\0",
         "header: found \"\\x89PNG\", expected a NIfTI file"},
        {"BrokenNrrdAnatomy", "anatomy.nii", "NRRD0004\ntype: uchar\n\n", "reading NRRD: found"},
        {"AtlasWithoutWholeNumbers", "atlas.nii",
         changedAtlas([](NiftiParts &p) { setSamples(p, std::vector<float>(8 * 9 * 7, 0.5f)); }),
         "voxel (0, 0, 0): found label 0.5, expected a whole number of 32 bits"},
        {"AtlasOfFourDimensions", "atlas.nii", run, "header: found 4 dimensions, expected 3"},
        {"TableOfLabelsWithoutIndex", "labels.tsv", "name\tcolor\na\t#000000\n",
         "first line: found the columns \"name, color\", expected a column \"index\""},
        {"EventsWithoutOnset", "events.tsv", "time\tduration\n",
         "first line: found the columns \"time, duration\", expected a column \"onset\""},
        {"EventsOfOtherText", "events.tsv", QByteArray("\xff\xfe\x6f\0\x6e\0", 6),
         "line 1: found \"\\xff\\xfeo\\x00n\\x00\", expected text in UTF-8"},
    };
}

INSTANTIATE_TEST_SUITE_P(Table, BadInputFiles, testing::ValuesIn(badRuns()),
                         [](const testing::TestParamInfo<BadRun> &run) { return run.param.name; });

TEST(ImportCommand, RefusesMissingFilesAndFolders)
{
    Workplace place;
    place.request.functional = place.folder.path("none.nii");
    expectRefused(place, runCorvane(commandLine(place)),
                  "none.nii: opening: found No such file or directory, expected a readable file");
    place.request.functional = place.folder.path();
    expectRefused(place, runCorvane(commandLine(place)),
                  ": opening: found a folder, expected a readable file");
}

TEST(ImportCommand, KeepsOlderFilesWhenItFails)
{
    const Workplace place;
    ASSERT_EQ(runCorvane(commandLine(place)).status, 0);
    const QByteArray before = bytesOf(place.outputPath("run.vtc"));
    const QByteArray packed = gzipped(niftiBytes(runParts()));
    putBytes(place.request.functional, packed.left(packed.size() - 4));
    EXPECT_EQ(runCorvane(commandLine(place)).status, 1);
    EXPECT_EQ(bytesOf(place.outputPath("run.vtc")), before);
    EXPECT_EQ(place.written(), (QStringList{QStringLiteral("run.vmr"), QStringLiteral("run.vtc")}));
}

TEST(ImportCommand, RefusesAnOutputFolderBelowAFile)
{
    Workplace place;
    place.request.folder = place.folder.path("labels.tsv") + QStringLiteral("/out");
    expectRefused(place, runCorvane(commandLine(place)), "labels.tsv/out: output folder: found");
}

TEST(ImportCommand, RefusesToReplaceAFolder)
{
    const Workplace place;
    ASSERT_TRUE(QDir().mkpath(place.outputPath("run.vtc")));
    const ProgramRun run = runCorvane(commandLine(place));
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.errorLines(), 1);
    EXPECT_EQ(place.written(), QStringList{QStringLiteral("run.vtc")});
}

/// The import with files that may not grow beyond a number of bytes.
ProgramRun runWithLimit(const Workplace &place, qint64 bytes)
{
    return runProgram(
        QStringLiteral("prlimit"),
        QStringList{QStringLiteral("--fsize=%1").arg(bytes), QStringLiteral(CORVANE_PROGRAM)} +
            commandLine(place));
}

TEST(ImportCommand, EndsInOneLineWhenTheDiskIsFull)
{
    const Workplace place;
    // Neither the anatomy, which has 16 MiB, ...
    expectRefused(place, runWithLimit(place, 1 << 20), "run.vmr: ");
    // ... nor a run that is larger.
    NiftiParts parts = runParts();
    parts.setSize({40, 40, 40, 160});
    setSamples(parts, std::vector<qint16>(40 * 40 * 40 * 160, 7));
    place.put("run.nii.gz", parts);
    expectRefused(place, runWithLimit(place, 17 << 20),
                  "run.vtc: writing: found File too large, expected room for 2048");
}

/// Whether a file is being written that has no name yet, behind the anatomy that is done.
bool timeCourseIsInWork(const QString &folder)
{
    if (!isInWork(folder, QStringLiteral("run.vmr")))
        return false;
    const QStringList all = hiddenIn(folder);
    return std::any_of(all.begin(), all.end(), [&](const QString &hidden) {
        return !hiddenIn(folder + QLatin1Char('/') + hidden).isEmpty();
    });
}

TEST(ImportCommand, LeavesNothingWhenASignalEndsIt)
{
    Workplace place;
    NiftiParts parts = runParts();
    parts.setSize({40, 40, 40, 160});
    setSamples(parts, std::vector<qint16>(40 * 40 * 40 * 160, 7));
    place.put("run.nii.gz", parts);
    const QString out = place.request.folder;
    const auto interrupted = [&](int signal, const std::function<bool()> &condition) {
        const InterruptedRun run = runInterrupted(QStringLiteral(CORVANE_PROGRAM),
                                                  commandLine(place), {{signal, condition}});
        EXPECT_EQ(run.signal, signal);
        EXPECT_EQ(run.errors, "");
        EXPECT_EQ(run.output, "");
    };
    const std::function<bool()> moments[] = {
        [&] { return !hiddenIn(out).isEmpty(); },
        [&] { return isInWork(out, QStringLiteral("run.vmr")); },
        [&] { return timeCourseIsInWork(out); }};
    for (const auto &moment : moments) {
        for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
            interrupted(signal, moment);
            EXPECT_FALSE(QFile::exists(out));
        }
    }
    // Nobody can clear away behind this one, but the next command does.
    for (const auto &moment : moments) {
        interrupted(SIGKILL, moment);
        EXPECT_EQ(place.written().size(), 1);
    }
    place.put("run.nii.gz", runParts());
    EXPECT_EQ(runCorvane(commandLine(place)).status, 0);
    EXPECT_EQ(place.written(), (QStringList{QStringLiteral("run.vmr"), QStringLiteral("run.vtc")}));
}

TEST(ImportCommand, KnowsWrongUsage)
{
    const Workplace place;
    for (const QStringList &more :
         {QStringList{QStringLiteral("--resolution"), QStringLiteral("0")},
          QStringList{QStringLiteral("--resolution"), QStringLiteral("2.5")},
          QStringList{QStringLiteral("--tr"), QStringLiteral("-1")},
          QStringList{QStringLiteral("--tr"), QStringLiteral("two")},
          QStringList{QStringLiteral("--voi-grid"), QStringLiteral("coarse")},
          QStringList{QStringLiteral("--labels"), place.folder.path("labels.tsv")},
          QStringList{QStringLiteral("--name"), QStringLiteral("a/b")},
          QStringList{QStringLiteral("--name"), QString()},
          QStringList{QStringLiteral("--unknown")}, QStringList{QStringLiteral("extra")}}) {
        const ProgramRun run = runCorvane(commandLine(place, more));
        EXPECT_EQ(run.status, 2) << joined(more);
        EXPECT_EQ(run.errorLines(), 1) << run.errors.constData();
        EXPECT_FALSE(QFile::exists(place.request.folder));
    }
    EXPECT_EQ(runCorvane({QStringLiteral("import")}).status, 2);
    const ProgramRun help = runCorvane({QStringLiteral("import"), QStringLiteral("--help")});
    EXPECT_EQ(help.status, 0);
    EXPECT_THAT(help.output.toStdString(), HasSubstr("--voi-grid"));
}

} // namespace

} // namespace corvane
