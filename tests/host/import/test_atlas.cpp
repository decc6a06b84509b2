// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/import/atlas.h"
#include "tests/host/support/host_files.h"
#include "tests/host/support/notes.h"

#include <set>

namespace corvane
{

namespace
{

const QString path = QStringLiteral("atlas.nii");

Eigen::Affine3d spaced(double step, double x, double y, double z)
{
    return Eigen::Translation3d(x, y, z) * Eigen::Scaling(step);
}

/// 4 x 4 x 4 samples 3 mm apart from voxel 100 on, in a cube whose voxels are the world's.
FunctionalGrid smallGrid()
{
    return layFunctionalGrid(spaced(3, 100, 100, 100), {4, 4, 4}, 3, QStringLiteral("run.nii"));
}

Image3d<qint32> atlasOf(const Eigen::Affine3d &toWorld, const GridSize &size, qint32 label = 0)
{
    Image3d<qint32> atlas;
    atlas.size = size;
    atlas.toWorld = toWorld;
    atlas.voxels.assign(static_cast<std::size_t>(atlas.voxelCount()), label);
    return atlas;
}

qint32 &at(Image3d<qint32> &atlas, int i, int j, int k)
{
    return atlas.voxels[static_cast<std::size_t>(i + atlas.size[0] * (j + atlas.size[1] * k))];
}

VoiSet vois(const Image3d<qint32> &atlas, const LabelTable &table, QStringList &notes,
            VoiGrid voiGrid = VoiGrid::Functional)
{
    return voisOfAtlas(atlas, table, smallGrid(), Eigen::Affine3d::Identity(), voiGrid, path,
                       notes);
}

TEST(Atlas, OnTheGridOfTheRunGivesEachVoxelOnce)
{
    Image3d<qint32> atlas = atlasOf(spaced(3, 100, 100, 100), {4, 4, 4});
    at(atlas, 0, 0, 0) = 7;
    at(atlas, 3, 2, 1) = 7;
    at(atlas, 1, 1, 1) = -2;
    QStringList notes;
    const VoiSet set = vois(atlas, {}, notes);
    EXPECT_EQ(set.referenceSpace, 0);
    EXPECT_EQ(set.resolution[0], 1);
    ASSERT_EQ(set.vois.size(), 2U);
    EXPECT_EQ(set.vois[0].name, QStringLiteral("-2"));
    EXPECT_EQ(set.vois[0].voxels, (std::vector<std::array<int, 3>>{{103, 103, 103}}));
    EXPECT_EQ(set.vois[1].name, QStringLiteral("7"));
    EXPECT_EQ(set.vois[1].voxels,
              (std::vector<std::array<int, 3>>{{100, 100, 100}, {109, 106, 103}}));
    EXPECT_TRUE(notes.isEmpty());
}

TEST(Atlas, OfFinerVoxelsCountsEachFunctionalVoxelOnce)
{
    // Labels of 1 mm: all of the run is label 1 in its lower half and 2 above.
    Image3d<qint32> atlas = atlasOf(spaced(1, 98.5, 98.5, 98.5), {14, 14, 14}, 1);
    for (int k = 7; k < 14; ++k)
        for (int j = 0; j < 14; ++j)
            for (int i = 0; i < 14; ++i)
                at(atlas, i, j, k) = 2;
    QStringList notes;
    const VoiSet set = vois(atlas, {}, notes);
    ASSERT_EQ(set.vois.size(), 2U);
    EXPECT_EQ(set.vois[0].voxels.size() + set.vois[1].voxels.size(), 64U);
    std::set<std::array<int, 3>> all(set.vois[0].voxels.begin(), set.vois[0].voxels.end());
    all.insert(set.vois[1].voxels.begin(), set.vois[1].voxels.end());
    EXPECT_EQ(all.size(), 64U);
}

TEST(Atlas, OnTheAnatomysGridGivesEveryVoxelOfTheRun)
{
    const Image3d<qint32> atlas = atlasOf(spaced(1, 90, 90, 90), {40, 40, 40}, 5);
    QStringList notes;
    const VoiSet set = vois(atlas, {}, notes, VoiGrid::Anatomy);
    ASSERT_EQ(set.vois.size(), 1U);
    // Each lattice point reaches one voxel to either side: 99 to 110 on each axis.
    EXPECT_EQ(set.vois[0].voxels.size(), 12U * 12 * 12);
    EXPECT_EQ(set.vois[0].voxels.front(), (std::array<int, 3>{99, 99, 99}));
    EXPECT_EQ(set.vois[0].voxels.back(), (std::array<int, 3>{110, 110, 110}));
    EXPECT_EQ(joined(notes),
              joined(QStringList{QStringLiteral(
                  "VOI 5 \"5\": 64000 voxels in the atlas, 1728 of them inside the run")}));
}

TEST(Atlas, OnTheAnatomysGridTellsItsCostInPrecision)
{
    // All 27 voxels of one sample and one of its neighbour: 28 * 28 / (27 * 27 + 1) = 1.07 of 2.
    Image3d<qint32> atlas = atlasOf(spaced(1, 90, 90, 90), {40, 40, 40});
    for (int k = 12; k < 15; ++k)
        for (int j = 12; j < 15; ++j)
            for (int i = 12; i < 15; ++i)
                at(atlas, i, j, k) = 5;
    at(atlas, 15, 12, 12) = 5;
    QStringList notes;
    vois(atlas, {}, notes, VoiGrid::Anatomy);
    EXPECT_EQ(joined(notes), "atlas.nii: VOIs of 1 mm voxels weigh the run's samples unequally: "
                             "their means are as precise as those of 54 % of the samples");
    notes.clear();
    vois(atlas, {}, notes, VoiGrid::Functional);
    EXPECT_EQ(joined(notes), "");
}

TEST(Atlas, OnTheAnatomysGridAgreesWithTheLoadOfAVoi)
{
    // At an even resolution halves go upward: a voxel half way belongs to the upper sample.
    const FunctionalGrid grid =
        layFunctionalGrid(spaced(2, 100, 100, 100), {3, 3, 3}, 2, QStringLiteral("run.nii"));
    const Image3d<qint32> atlas = atlasOf(spaced(1, 90, 90, 90), {40, 40, 40}, 1);
    QStringList notes;
    const VoiSet set =
        voisOfAtlas(atlas, {}, grid, Eigen::Affine3d::Identity(), VoiGrid::Anatomy, path, notes);
    ASSERT_EQ(set.vois.size(), 1U);
    std::set<int> coordinates;
    for (const auto &voxel : set.vois[0].voxels)
        coordinates.insert(voxel[0]);
    EXPECT_EQ(coordinates, (std::set<int>{99, 100, 101, 102, 103, 104}));
    for (const int coordinate : coordinates) {
        const double index = std::floor(double((float(coordinate) - 100.0f) / 2.0f) + 0.5);
        EXPECT_GE(index, 0);
        EXPECT_LT(index, 3);
    }
    EXPECT_EQ(set.vois[0].voxels.size(), 6U * 6 * 6);
    EXPECT_EQ(notes.size(), 1);
    EXPECT_TRUE(notes[0].endsWith(QStringLiteral("216 of them inside the run")))
        << notes[0].toStdString();
}

/// A run of 12 x 12 x 4 voxels of 3 mm that lies askew in the cube: the corners of its box hold
/// nothing.
Eigen::Affine3d askew()
{
    return Eigen::Translation3d(120, 100, 100) * Eigen::AngleAxisd(0.4, Eigen::Vector3d::UnitZ()) *
           Eigen::Scaling(3.0);
}

/// Whether a place of the cube lies in a voxel of that run, in plain words.
bool wasRecorded(const std::array<int, 3> &cubeVoxel)
{
    const Eigen::Vector3d place =
        askew().inverse() * Eigen::Vector3d(cubeVoxel[0], cubeVoxel[1], cubeVoxel[2]);
    return (place.array() > -0.5).all() && place[0] < 11.5 && place[1] < 11.5 && place[2] < 3.5;
}

TEST(Atlas, LeavesOutWhatTheRunDidNotRecord)
{
    const FunctionalGrid grid = layFunctionalGrid(askew(), {12, 12, 4}, 3, path);
    const qint64 recorded = grid.sampleCount() - VolumeSampler(grid).pointsOutside();
    ASSERT_LT(recorded, grid.sampleCount());
    // Label 1 everywhere, label 2 in a corner of the box.
    Image3d<qint32> atlas = atlasOf(spaced(1, 80, 80, 80), {120, 120, 60}, 1);
    ASSERT_FALSE(grid.isRecorded(0, 0, 0));
    const std::array<int, 3> corner = grid.cubeVoxel(0, 0, 0);
    at(atlas, corner[0] - 80, corner[1] - 80, corner[2] - 80) = 2;

    QStringList notes;
    std::vector<LabelCount> counts;
    const VoiSet set = voisOfAtlas(atlas, {}, grid, Eigen::Affine3d::Identity(),
                                   VoiGrid::Functional, path, notes, &counts);
    ASSERT_EQ(set.vois.size(), 2U);
    EXPECT_EQ(static_cast<qint64>(set.vois[0].voxels.size()), recorded);
    for (const std::array<int, 3> &voxel : set.vois[0].voxels)
        EXPECT_TRUE(wasRecorded(voxel)) << voxel[0] << ' ' << voxel[1] << ' ' << voxel[2];
    EXPECT_TRUE(set.vois[1].voxels.empty());

    // Of the atlas those voxels count that belong to a sample that was recorded.
    const VoiSet fine =
        voisOfAtlas(atlas, {}, grid, Eigen::Affine3d::Identity(), VoiGrid::Anatomy, path, notes);
    EXPECT_EQ(static_cast<qint64>(fine.vois[0].voxels.size()), recorded * 27);
    EXPECT_TRUE(fine.vois[1].voxels.empty());
    EXPECT_EQ(counts[0].insideRun, recorded * 27);
    EXPECT_EQ(counts[1].insideRun, 0);
    EXPECT_EQ(joined(notes.mid(0, 2)),
              joined({QStringLiteral("VOI 1 \"1\": 863999 voxels in the atlas, %1 of them inside "
                                     "the run")
                          .arg(recorded * 27),
                      QStringLiteral("VOI 2 \"2\": 1 voxel in the atlas, 0 of them inside the "
                                     "run: no functional voxel has this label, the VOI is "
                                     "empty")}));
}

TEST(Atlas, SaysEveryVoiThatLosesVoxelsAndKeepsIt)
{
    Image3d<qint32> atlas = atlasOf(spaced(3, 94, 100, 100), {10, 4, 4});
    at(atlas, 0, 0, 0) = 1; // outside the run
    at(atlas, 1, 0, 0) = 2; // one voxel outside, one inside
    at(atlas, 2, 0, 0) = 2;
    at(atlas, 3, 0, 0) = 3; // inside
    LabelTable table;
    table[1].name = QStringLiteral("Outside");
    table[2].name = QStringLiteral("Half");
    table[3].name = QStringLiteral("Inside");
    table[9].name = QStringLiteral("Absent");
    table[11].name = QStringLiteral("Absent too");
    QStringList notes;
    const VoiSet set = vois(atlas, table, notes);
    ASSERT_EQ(set.vois.size(), 5U);
    const std::vector<std::pair<QString, std::size_t>> expected{{QStringLiteral("Outside"), 0},
                                                                {QStringLiteral("Half"), 1},
                                                                {QStringLiteral("Inside"), 1},
                                                                {QStringLiteral("Absent"), 0},
                                                                {QStringLiteral("Absent too"), 0}};
    for (std::size_t v = 0; v < expected.size(); ++v) {
        EXPECT_EQ(set.vois[v].name, expected[v].first);
        EXPECT_EQ(set.vois[v].voxels.size(), expected[v].second);
    }
    EXPECT_EQ(joined(notes),
              joined((QStringList{
                  QStringLiteral("VOI 1 \"Outside\": 1 voxel in the atlas, 0 of them inside the "
                                 "run: no functional voxel has this label, the VOI is empty"),
                  QStringLiteral("VOI 2 \"Half\": 2 voxels in the atlas, 1 of them inside the run"),
                  QStringLiteral("atlas.nii: 2 labels of the table without a voxel, whose VOIs are "
                                 "empty: 9 \"Absent\", 11 \"Absent too\"")})));
}

TEST(Atlas, SaysAVoiThatFallsBetweenFunctionalVoxels)
{
    Image3d<qint32> atlas = atlasOf(spaced(1, 100, 100, 100), {10, 10, 10});
    at(atlas, 1, 1, 1) = 4;
    QStringList notes;
    const VoiSet set = vois(atlas, {}, notes);
    ASSERT_EQ(set.vois.size(), 1U);
    EXPECT_TRUE(set.vois[0].voxels.empty());
    EXPECT_EQ(joined(notes), joined(QStringList{QStringLiteral(
                                 "VOI 4 \"4\": 1 voxel in the atlas, 1 of them inside the run: no "
                                 "functional voxel has this label, the VOI is empty")}));
}

TEST(Atlas, SaysLabelsThatTheTableDoesNotName)
{
    Image3d<qint32> atlas = atlasOf(spaced(3, 100, 100, 100), {4, 4, 4}, 12);
    LabelTable table;
    table[12].name = QStringLiteral("Named");
    at(atlas, 0, 0, 0) = 5;
    QStringList notes;
    const VoiSet set = vois(atlas, table, notes);
    ASSERT_EQ(set.vois.size(), 2U);
    EXPECT_EQ(set.vois[0].name, QStringLiteral("5"));
    EXPECT_EQ(joined(notes),
              joined(QStringList{QStringLiteral(
                  "atlas.nii: 1 label without a name in the table, whose VOIs are named by their "
                  "numbers: 5")}));
}

TEST(Atlas, NamesByNumberWhatTheTableGivesNoName)
{
    Image3d<qint32> atlas = atlasOf(spaced(3, 100, 100, 100), {4, 4, 4}, 1);
    at(atlas, 0, 0, 0) = 2;
    at(atlas, 1, 0, 0) = 3;
    LabelTable table;
    table[1].name = QStringLiteral("Named");
    table[2].colour = Colour{1, 2, 3};
    QStringList notes;
    const VoiSet set = vois(atlas, table, notes);
    ASSERT_EQ(set.vois.size(), 3U);
    EXPECT_EQ(set.vois[1].name, QStringLiteral("2"));
    EXPECT_EQ(set.vois[1].b, 3);
    EXPECT_EQ(set.vois[2].name, QStringLiteral("3"));
    EXPECT_EQ(joined(notes), joined(QStringList{QStringLiteral(
                                 "atlas.nii: 2 labels without a name in the table, whose VOIs are "
                                 "named by their numbers: 2, 3")}));
}

TEST(Atlas, TakesColoursFromTheTableAndOthersApart)
{
    Image3d<qint32> atlas = atlasOf(spaced(3, 100, 100, 100), {4, 4, 4}, 1);
    at(atlas, 0, 0, 0) = 2;
    at(atlas, 1, 0, 0) = 3;
    LabelTable table;
    table[1] = {QStringLiteral("a"), Colour{1, 2, 3}};
    table[2] = {QStringLiteral("b"), std::nullopt};
    table[3] = {QStringLiteral("c"), std::nullopt};
    QStringList notes;
    const VoiSet set = vois(atlas, table, notes);
    EXPECT_EQ(set.vois[0].r, 1);
    EXPECT_EQ(set.vois[0].g, 2);
    EXPECT_EQ(set.vois[0].b, 3);
    EXPECT_GT(std::abs(set.vois[1].r - set.vois[2].r) + std::abs(set.vois[1].g - set.vois[2].g) +
                  std::abs(set.vois[1].b - set.vois[2].b),
              50);
    const TemporaryFolder folder;
    writeVoiFile(folder.path("a.voi"), set);
    EXPECT_EQ(readVoiFile(folder.path("a.voi")), set);
}

TEST(Atlas, RefusesAnImageThatIsNone)
{
    Image3d<qint32> atlas = atlasOf(spaced(1, 100, 100, 100), {40, 40, 40});
    for (std::size_t n = 0; n < atlas.voxels.size(); ++n)
        atlas.voxels[n] = static_cast<qint32>(n);
    QStringList notes;
    EXPECT_EQ(errorOf([&] { vois(atlas, {}, notes); }),
              "atlas.nii: voxels: found more than 20000 labels, expected an image of labels");
}

} // namespace

} // namespace corvane
