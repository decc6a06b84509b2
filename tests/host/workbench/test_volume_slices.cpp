// SPDX-License-Identifier: GPL-3.0-or-later
//
// Slices, VOIs over them and time courses, without widgets.
#include "host/workbench/run_overlay.h"
#include "host/workbench/time_course.h"
#include "host/workbench/voi_overlay.h"
#include "host/workbench/volume_slices.h"
#include "host/workbench/world_place.h"
#include "tests/host/support/host_files.h"

#include <gmock/gmock.h>
#include <numeric>

namespace corvane
{

namespace
{

using testing::ElementsAre;
using testing::IsEmpty;

/// A volume that is 0 but for single voxels.
template <typename Sample>
Vmr volumeWith(const std::vector<std::pair<CubeVoxel, int>> &voxels)
{
    auto samples = std::make_shared<std::vector<Sample>>(static_cast<std::size_t>(Vmr::voxelCount));
    for (const auto &[voxel, value] : voxels)
        (*samples)[static_cast<std::size_t>(voxel[0] + 256 * (voxel[1] + 256 * voxel[2]))] =
            static_cast<Sample>(value);
    Vmr vmr;
    vmr.type = sizeof(Sample) == 1 ? Vmr::UChar : Vmr::UShort;
    vmr.voxels = std::shared_ptr<const void>(samples, samples->data());
    return vmr;
}

VoiSet setOf(const std::vector<std::vector<std::array<int, 3>>> &vois)
{
    VoiSet set;
    for (const auto &voxels : vois) {
        Voi voi;
        voi.name = QStringLiteral("area %1").arg(set.vois.size() + 1);
        voi.r = 255;
        voi.g = 0;
        voi.b = 0;
        voi.voxels = voxels;
        set.vois.push_back(voi);
    }
    return set;
}

int grey(const QImage &image, int x, int y)
{
    const QRgb pixel = image.pixel(x, y);
    EXPECT_EQ(qRed(pixel), qGreen(pixel));
    EXPECT_EQ(qRed(pixel), qBlue(pixel));
    return qRed(pixel);
}

} // namespace

TEST(VolumeSlices, ShowOneVoxelAtItsPlaceInEachPlane)
{
    const Vmr vmr = volumeWith<quint16>({{{10, 20, 30}, 1000}});
    const GreyWindow window{500, 1000};
    EXPECT_EQ(intensityAt(vmr, {10, 20, 30}), 1000);
    EXPECT_EQ(intensityAt(vmr, {30, 20, 10}), 0);
    const struct {
        SlicePlane plane;
        int position;
        QPoint place;
    } rows[] = {{SlicePlane::Sagittal, 30, {10, 20}},
                {SlicePlane::Coronal, 10, {30, 20}},
                {SlicePlane::Axial, 20, {30, 10}}};
    for (const auto &row : rows) {
        const QImage image = sliceImage(vmr, row.plane, row.position, window);
        EXPECT_EQ(image.size(), QSize(256, 256));
        EXPECT_EQ(grey(image, row.place.x(), row.place.y()), 255);
        EXPECT_EQ(grey(image, row.place.y(), row.place.x()), 0);
        const QImage next = sliceImage(vmr, row.plane, row.position + 1, window);
        EXPECT_EQ(grey(next, row.place.x(), row.place.y()), 0);
    }
}

TEST(VolumeSlices, GreysRunFromTheLowerToTheUpperEndOfTheWindow)
{
    const Vmr vmr = volumeWith<quint8>(
        {{{0, 0, 0}, 99}, {{1, 0, 0}, 100}, {{2, 0, 0}, 125}, {{3, 0, 0}, 150}, {{4, 0, 0}, 151}});
    const QImage image = sliceImage(vmr, SlicePlane::Sagittal, 0, {125, 50});
    EXPECT_EQ(grey(image, 0, 0), 0);
    EXPECT_EQ(grey(image, 1, 0), 0);
    EXPECT_NEAR(grey(image, 2, 0), 127.5, 0.5);
    EXPECT_EQ(grey(image, 3, 0), 255);
    EXPECT_EQ(grey(image, 4, 0), 255);
}

TEST(VolumeSlices, TheFirstWindowLeavesOutBackgroundAndExtremes)
{
    // In rows that are looked at: 200 voxels from 100 to 299 and one far above.
    std::vector<std::pair<CubeVoxel, int>> voxels{{{255, 0, 0}, 60000}};
    for (int n = 0; n < 200; ++n)
        voxels.push_back({{n, 4, 8}, 100 + n});
    const GreyWindow window = automaticWindow(volumeWith<quint16>(voxels));
    EXPECT_DOUBLE_EQ(window.level - window.width / 2, 102);
    EXPECT_DOUBLE_EQ(window.level + window.width / 2, 299);
    EXPECT_EQ(automaticWindow(zeroVmr()), GreyWindow());
}

TEST(VolumeSlices, MasksAndImagesOfFewValuesAreSeenAtOnce)
{
    const std::vector<int> values[] = {{1}, {255}, {1, 2}, {1, 2, 3}, {7}, {1000}, {2, 60000}};
    for (const std::vector<int> &few : values) {
        std::vector<std::pair<CubeVoxel, int>> voxels;
        for (int n = 0; n < 40; ++n)
            voxels.push_back({{n, 100, 100}, few[static_cast<std::size_t>(n) % few.size()]});
        const Vmr vmr = volumeWith<quint16>(voxels);
        const QImage image = sliceImage(vmr, SlicePlane::Sagittal, 100, automaticWindow(vmr));
        EXPECT_EQ(grey(image, 50, 100), 0) << few.front();
        EXPECT_EQ(grey(image, int(few.size()) - 1, 100), 255) << few.front();
        if (few.back() < 2 * 30 * few.front()) {
            EXPECT_GT(grey(image, 0, 100), 60) << few.front();
        }
    }
}

TEST(VolumeSlices, VoxelsBetweenTheRowsThatAreLookedAtFirstCountToo)
{
    const Vmr vmr = volumeWith<quint8>({{{9, 9, 9}, 1}});
    const QImage image = sliceImage(vmr, SlicePlane::Sagittal, 9, automaticWindow(vmr));
    EXPECT_EQ(grey(image, 9, 9), 255);
}

TEST(VolumeSlices, TellTheEndsOfAxesAndPositionsByTheFilesOwnSpace)
{
    Vmr vmr = zeroVmr();
    EXPECT_EQ(axisEnds(vmr, 0).low, QString());
    vmr.space = VmrSpace{{{{0, -1, 0}, {0, 0, -1}, {-1, 0, 0}}}, {128, 120, 110}};
    EXPECT_EQ(axisEnds(vmr, 0).low + axisEnds(vmr, 0).high, QStringLiteral("AP"));
    EXPECT_EQ(axisEnds(vmr, 1).low + axisEnds(vmr, 1).high, QStringLiteral("SI"));
    EXPECT_EQ(axisEnds(vmr, 2).low + axisEnds(vmr, 2).high, QStringLiteral("RL"));
    EXPECT_THAT(worldPosition(vmr, {1, 2, 3}), ElementsAre(125, 119, 108));
    EXPECT_EQ(voxelAtWorld(vmr, {125, 119, 108}), (CubeVoxel{1, 2, 3}));
    EXPECT_EQ(voxelAtWorld(vmr, {125.4, 118.6, 108.4}), (CubeVoxel{1, 2, 3}));
    EXPECT_FALSE(isInCube(voxelAtWorld(vmr, {1e30, 0, 0})));
}

TEST(WorldPlace, IsReadAsPeopleWriteIt)
{
    const WorldPlace place{-42, -22, 54.5};
    EXPECT_EQ(worldText(place).toStdString(), "L 42.0  P 22.0  S 54.5 mm");
    for (const char *text : {"-42 -22 54.5", "-42, -22, 54.5", " -42;-22;54.5 mm",
                             "L 42  P 22  S 54.5 mm", "l42 p22 s54.5", "S 54.5 L 42 P 22",
                             "\xe2\x88\x92"
                             "42 \xe2\x88\x92"
                             "22 +54.50",
                             "R -42 A -22 I -54.5"})
        EXPECT_EQ(worldPlaceOf(QString::fromUtf8(text)), place) << text;
    for (const char *text : {"", "not known", "1 2", "1 2 3 4", "1 2 three", "R 1 L 2 S 3",
                             "R 1 2 3", "1 A 2 3", "1e5 2 3"})
        EXPECT_EQ(worldPlaceOf(QString::fromUtf8(text)), std::nullopt) << text;
}

TEST(VolumeSlices, AreTurnedOverOnlyForTheOtherConvention)
{
    Vmr vmr = zeroVmr();
    for (const bool neurological : {false, true})
        EXPECT_FALSE(isMirrored(vmr, SlicePlane::Axial, neurological));
    vmr.space = VmrSpace{{{{0, -1, 0}, {0, 0, -1}, {-1, 0, 0}}}, {128, 120, 110}};
    EXPECT_FALSE(isMirrored(vmr, SlicePlane::Axial, false));
    EXPECT_TRUE(isMirrored(vmr, SlicePlane::Axial, true));
    EXPECT_TRUE(isMirrored(vmr, SlicePlane::Coronal, true));
    EXPECT_FALSE(isMirrored(vmr, SlicePlane::Sagittal, true));
    // The file's own axis runs the other way.
    vmr.space->directions[2] = {1, 0, 0};
    EXPECT_TRUE(isMirrored(vmr, SlicePlane::Axial, false));
    EXPECT_FALSE(isMirrored(vmr, SlicePlane::Axial, true));
}

TEST(VolumeSlices, FindTheHeadWithoutSpecks)
{
    std::vector<std::pair<CubeVoxel, int>> voxels{{{3, 3, 3}, 900}, {{250, 9, 200}, 900}};
    for (int k = 60; k < 100; ++k)
        for (int j = 50; j < 90; ++j)
            for (int i = 40; i < 80; ++i)
                voxels.push_back({{i, j, k}, 500 + i + j + k});
    const auto box = headBox(volumeWith<quint16>(voxels));
    ASSERT_TRUE(box.has_value());
    EXPECT_EQ(box->low, (CubeVoxel{40, 50, 60}));
    EXPECT_EQ(box->high, (CubeVoxel{79, 89, 99}));
    EXPECT_FALSE(headBox(zeroVmr()).has_value());
}

TEST(VolumeSlices, ATableOfASliceHasItsIntensitiesAtTheirCoordinates)
{
    const QByteArray table =
        sliceTable(volumeWith<quint16>({{{10, 20, 30}, 1000}}), SlicePlane::Coronal, 10);
    const QList<QByteArray> rows = table.split('\n');
    ASSERT_EQ(rows.size(), 258); // a head, and an empty piece behind the last line
    EXPECT_EQ(rows[0].split('\t').value(31), "30");
    EXPECT_EQ(rows[21].split('\t').value(0), "20");
    EXPECT_EQ(rows[21].split('\t').value(31), "1000");
    EXPECT_EQ(table.count("1000"), 1);
}

TEST(RunOverlay, ColoursWhatWasRecordedFromTheDarkToTheLightEnd)
{
    // Samples 2 voxels apart: 0, 1, 2, 3 and one that is no number.
    const double none = std::numeric_limits<double>::quiet_NaN();
    const RunLattice lattice{{10, 20, 30}, {5, 1, 1}, 2};
    const RunOverlay run(lattice, {0, 1, 2, 3, none}, ColourMap::Grey);
    EXPECT_EQ(run.colourAt({10, 20, 30}), QRgb(0)); // as transparent as the rest of the cube
    EXPECT_EQ(run.colourAt({18, 20, 30}), QRgb(0));
    EXPECT_EQ(run.colourAt({100, 20, 30}), QRgb(0));
    EXPECT_EQ(run.colourAt({12, 20, 30}), qRgb(0, 0, 0));
    EXPECT_EQ(run.colourAt({16, 20, 30}), run.colourAt({15, 19, 29}));
    EXPECT_GT(qRed(run.colourAt({16, 20, 30})), qRed(run.colourAt({14, 20, 30})) - 1);
    EXPECT_EQ(run.valueAt({16, 20, 30}), std::optional(3.0));
    EXPECT_EQ(run.valueAt({0, 0, 0}), std::nullopt);

    const Vmr black = volumeWith<quint8>({});
    SliceLayers layers;
    layers.run = &run;
    layers.runOpacity = 1;
    const QImage whole = sliceImage(black, SlicePlane::Sagittal, 30, {128, 256}, layers);
    EXPECT_EQ(whole.pixel(16, 20), run.colourAt({16, 20, 30}));
    layers.runOpacity = 0.5;
    const QImage half = sliceImage(black, SlicePlane::Sagittal, 30, {128, 256}, layers);
    EXPECT_EQ(qRed(half.pixel(16, 20)), qRed(whole.pixel(16, 20)) / 2);
    // VOIs lie above it.
    const VoiOverlay voi(setOf({{{16, 20, 30}}}), {true});
    layers.vois = &voi;
    layers.voiOpacity = 1;
    EXPECT_EQ(sliceImage(black, SlicePlane::Sagittal, 30, {128, 256}, layers).pixel(16, 20),
              qRgb(255, 0, 0));
}

TEST(RunOverlay, LeavesTheNoiseAroundTheHeadWithoutColour)
{
    const RunLattice lattice{{0, 0, 0}, {100, 1, 1}, 1};
    std::vector<double> values(100, 20);
    std::iota(values.begin() + 40, values.end(), 900);
    const RunOverlay run(lattice, values, ColourMap::Grey);
    EXPECT_EQ(run.colourAt({10, 0, 0}), QRgb(0));
    EXPECT_EQ(run.valueAt({10, 0, 0}), std::optional(20.0));
    // The scale is that of the head alone.
    EXPECT_LT(qRed(run.colourAt({42, 0, 0})), 30);
    EXPECT_GT(qRed(run.colourAt({97, 0, 0})), 225);
}

TEST(RunOverlay, ReadsTheMeanAndSingleVolumesOfARun)
{
    const TemporaryFolder folder;
    const std::atomic<bool> wanted{false};
    const std::atomic<bool> outdated{true};
    const VtcInfo info = smallVtcInfo();
    putBytes(folder.path("a.vtc"), vtcBytes(info, numberedSamples<short>(info)));
    const VtcFile vtc(folder.path("a.vtc"));
    const std::vector<double> mean = meanOfRun(vtc, wanted);
    ASSERT_EQ(mean.size(), 12U);
    EXPECT_EQ(mean[0], -18.5);
    EXPECT_EQ(mean[11], 25.5);
    EXPECT_EQ(volumeOfRun(vtc, 1, wanted)[0], -20);
    EXPECT_EQ(volumeOfRun(vtc, 4, wanted)[11], 27);
    EXPECT_THAT(meanOfRun(vtc, outdated), IsEmpty());
    const RunOverlay run(latticeOf(vtc.info()), mean, ColourMap::Hot);
    // The lattice point of the course that is read there.
    EXPECT_EQ(run.valueAt({60, 52, 62}), std::optional(9.5));
}

TEST(ColourMaps, RunFromDarkToLight)
{
    const QStringList names = colourMapNames();
    ASSERT_EQ(names.size(), 3);
    for (int map = 0; map < names.size(); ++map) {
        int last = -1;
        for (int n = 0; n <= 20; ++n) {
            const int light = qGray(sequentialColour(ColourMap(map), n / 20.0).rgb());
            EXPECT_GT(light, last) << names[map].toStdString() << n;
            last = light;
        }
        EXPECT_EQ(sequentialColour(ColourMap(map), -3), sequentialColour(ColourMap(map), 0));
        EXPECT_EQ(sequentialColour(ColourMap(map), 7), sequentialColour(ColourMap(map), 1));
    }
}

TEST(VoiOverlay, ColoursShownVoisAndTheLastOneOnTop)
{
    const VoiSet set = setOf({{{10, 20, 30}, {11, 20, 30}}, {{11, 20, 30}}});
    const VoiOverlay all(set, {true, true});
    EXPECT_EQ(all.labelAt(CubeVoxel{10, 20, 30}), 1);
    EXPECT_EQ(all.labelAt(CubeVoxel{11, 20, 30}), 2);
    EXPECT_EQ(all.labelAt(CubeVoxel{12, 20, 30}), 0);
    const VoiOverlay first(set, {true, false});
    EXPECT_EQ(first.labelAt(CubeVoxel{11, 20, 30}), 1);

    const QImage image = sliceImage(volumeWith<quint8>({{{10, 20, 30}, 100}}), SlicePlane::Sagittal,
                                    30, {127.5, 255}, {&all, 0.5});
    EXPECT_EQ(image.pixel(10, 20), qRgb(177, 50, 50));
    EXPECT_EQ(image.pixel(9, 20), qRgb(0, 0, 0));
}

TEST(VoiOverlay, FillsTheBlocksOfAWideGridUpToTheEdgeOfTheCube)
{
    const VoiSet set = setOf({{{0, 3, 6}, {3, 3, 6}}, {{255, 0, 0}}, {}});
    EXPECT_EQ(voxelSpacing(set), 3);
    const VoiOverlay overlay(set, {true, true, true});
    EXPECT_EQ(overlay.labelAt(CubeVoxel{1, 2, 5}), 1);
    EXPECT_EQ(overlay.labelAt(CubeVoxel{4, 4, 7}), 1);
    EXPECT_EQ(overlay.labelAt(CubeVoxel{5, 3, 6}), 0);
    EXPECT_EQ(overlay.labelAt(CubeVoxel{254, 1, 1}), 2);
    EXPECT_EQ(overlay.labelAt(CubeVoxel{253, 0, 0}), 0);
    EXPECT_EQ(voxelSpacing(setOf({{{5, 5, 5}}})), 1);
    EXPECT_EQ(voxelSpacing(setOf({})), 1);
}

TEST(VoiOverlay, TurnsCoordinatesOfOtherReferenceSpaces)
{
    VoiSet set = setOf({{{1, 2, 3}}});
    EXPECT_THAT(cubeVoxel(set, {1, 2, 3}), ElementsAre(1, 2, 3));
    set.referenceSpace = 3;
    EXPECT_THAT(cubeVoxel(set, {1, 2, 3}), ElementsAre(126, 125, 127));
    EXPECT_EQ(VoiOverlay(set, {true}).labelAt(CubeVoxel{126, 125, 127}), 1);
}

TEST(VoiOverlay, TheCentreIsAVoxelOfTheVoi)
{
    // A half ring: its mean is none of its voxels.
    const VoiSet set = setOf({{{0, 0, 0}, {4, 0, 0}, {4, 4, 0}, {4, 5, 0}, {0, 4, 0}}, {}});
    EXPECT_EQ(centreOf(set, 0), (CubeVoxel{4, 4, 0}));
    EXPECT_EQ(centreOf(set, 1), std::nullopt);
}

TEST(TimeCourse, IsThatOfTheNearestSampleInsideTheRun)
{
    const TemporaryFolder folder;
    const VtcInfo info = smallVtcInfo();
    putBytes(folder.path("a.vtc"), vtcBytes(info, numberedSamples<short>(info)));
    const VtcFile vtc(folder.path("a.vtc"));
    // Sample (1, 0, 1) stands at (60, 52, 62); place 4 * (1 + 3 * (0 + 2 * 1)) = 28, less 20.
    EXPECT_THAT(timeCourseAt(vtc, {60, 52, 62}), ElementsAre(8, 9, 10, 11));
    EXPECT_THAT(timeCourseAt(vtc, {61, 53, 61}), ElementsAre(8, 9, 10, 11));
    EXPECT_THAT(timeCourseAt(vtc, {56, 52, 59}), ElementsAre(-20, -19, -18, -17));
    EXPECT_THAT(timeCourseAt(vtc, {55, 52, 59}), IsEmpty());
    EXPECT_THAT(timeCourseAt(vtc, {65, 52, 59}), IsEmpty());
    EXPECT_THAT(timeCourseAt(vtc, {57, 52, 0}), IsEmpty());
}

TEST(TimeCourse, ReadsFloatsAsTheyAre)
{
    const TemporaryFolder folder;
    const VtcInfo info = smallVtcInfo(VtcInfo::Float);
    std::vector<float> samples = numberedSamples<float>(info);
    samples[1] = 0.5F;
    putBytes(folder.path("a.vtc"), vtcBytes(info, samples));
    EXPECT_THAT(timeCourseAt(VtcFile(folder.path("a.vtc")), {57, 52, 59}),
                ElementsAre(-20, 0.5, -18, -17));
}

TEST(TimeCourse, TheMeanOfAVoiIsThatOfTheAnalysis)
{
    const TemporaryFolder folder;
    const std::atomic<bool> wanted{false};
    const VtcInfo info = smallVtcInfo();
    putBytes(folder.path("a.vtc"), vtcBytes(info, numberedSamples<short>(info)));
    const VtcFile vtc(folder.path("a.vtc"));
    // Two voxels of one sample (8, 9, ...), one of another (-20, -19, ...), one outside: 0.
    EXPECT_THAT(meanCourseOf(vtc, {{60, 52, 62}, {61, 53, 61}, {57, 52, 59}, {0, 0, 0}}, wanted),
                ElementsAre(-1, -0.25, 0.5, 1.25));
    EXPECT_THAT(meanCourseOf(vtc, {}, wanted), IsEmpty());
}

} // namespace corvane
