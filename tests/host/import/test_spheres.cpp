// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/input_error.h"
#include "host/import/sphere_table.h"
#include "tests/host/support/host_files.h"
#include "tests/host/support/notes.h"

#include <gmock/gmock.h>

namespace corvane
{
namespace
{

using testing::HasSubstr;

/// 20 x 20 x 20 samples 3 mm apart from voxel 100 on.
FunctionalGrid grid()
{
    return layFunctionalGrid(Eigen::Translation3d(100, 100, 100) * Eigen::Scaling(3.0),
                             {20, 20, 20}, 3, QStringLiteral("run.nii"));
}

/// The cube's voxel 128 is the origin of the world.
Eigen::Affine3d cubeToWorld()
{
    return Eigen::Affine3d(Eigen::Translation3d(-128, -128, -128));
}

struct Made {
    VoiSet set;
    std::vector<LabelCount> counts;
    QStringList notes;
};

Made made(const std::vector<Sphere> &spheres, VoiGrid voiGrid = VoiGrid::Functional)
{
    Made result;
    result.set = voisOfSpheres(spheres, grid(), cubeToWorld(), voiGrid,
                               QStringLiteral("places.tsv"), result.notes, result.counts);
    return result;
}

/// What all places of the lattice, one by one, say.
std::size_t placesWithin(const Eigen::Vector3d &centre, double radius, int step)
{
    std::size_t count = 0;
    for (int i = 100; i < 160; i += step)
        for (int j = 100; j < 160; j += step)
            for (int k = 100; k < 160; k += step)
                count += (cubeToWorld() * Eigen::Vector3d(i, j, k) - centre).norm() <= radius;
    return count;
}

TEST(Spheres, HoldThePlacesWithinTheirRadius)
{
    // The middle one's centre is the lattice point (127, 127, 127).
    const Made one = made({{QStringLiteral("point"), {-1, -1, -1}, 2.9},
                           {QStringLiteral("seven"), {-1, -1, -1}, 3},
                           {QStringLiteral("large"), {2.5, -3.2, 4}, 10}});
    EXPECT_EQ(one.set.vois[0].voxels, (std::vector<std::array<int, 3>>{{127, 127, 127}}));
    EXPECT_EQ(one.set.vois[1].voxels.size(), 7U);
    EXPECT_EQ(one.set.vois[2].voxels.size(), placesWithin({2.5, -3.2, 4}, 10, 3));
    EXPECT_EQ(joined(one.notes), "");
    EXPECT_EQ(one.counts[1].inAtlas, 123); // of 1 mm
    EXPECT_EQ(one.counts[1].insideRun, 123);
    EXPECT_NE(one.set.vois[0].r * 1000 + one.set.vois[0].g,
              one.set.vois[1].r * 1000 + one.set.vois[1].g);
}

TEST(Spheres, OnTheAnatomysGridHoldEveryVoxel)
{
    const Made one = made({{QStringLiteral("large"), {2.5, -3.2, 4}, 6.5}}, VoiGrid::Anatomy);
    EXPECT_EQ(one.set.vois[0].voxels.size(), placesWithin({2.5, -3.2, 4}, 6.5, 1));
    EXPECT_THAT(joined(one.notes), HasSubstr("weigh the run's samples unequally"));
}

TEST(Spheres, ThatLosePlacesAreTold)
{
    const Made one = made({{QStringLiteral("between"), {0.5, 0.5, 0.5}, 1},
                           {QStringLiteral("edge"), {-28, 0, 0}, 4},
                           {QStringLiteral("far"), {400, 0, 0}, 5}});
    EXPECT_EQ(one.set.vois.size(), 3U);
    EXPECT_TRUE(one.set.vois[0].voxels.empty());
    EXPECT_FALSE(one.set.vois[1].voxels.empty());
    EXPECT_TRUE(one.set.vois[2].voxels.empty());
    EXPECT_EQ(one.notes.size(), 3);
    EXPECT_EQ(one.notes[0].toStdString(),
              "VOI \"between\": 8 voxels of 1 mm in the sphere, 8 of them inside the run: no "
              "functional voxel lies in it, the VOI is empty");
    EXPECT_THAT(one.notes[2].toStdString(), HasSubstr("VOI \"far\": 0 voxels of 1 mm"));
}

class SphereTable : public testing::Test
{
protected:
    std::vector<Sphere> read(const QByteArray &bytes)
    {
        putBytes(path, bytes);
        return readSpheres(path, notes);
    }
    std::string fault(const QByteArray &bytes)
    {
        try {
            read(bytes);
        } catch (const InputError &error) {
            return error.what();
        }
        return {};
    }

    const TemporaryFolder folder;
    const QString path = folder.path("places.tsv");
    QStringList notes;
};

TEST_F(SphereTable, GivesPlacesRadiusAndNames)
{
    const std::vector<Sphere> spheres =
        read("name\tx\ty\tz\tradius\tnetwork\nleft M1\t-38\t-22.5\t56\t6\ta\n\t1e1\t0\t0\t0.5\tb\n"
             "n/a\t0\t0\t0\t4\tb\n");
    ASSERT_EQ(spheres.size(), 3U);
    EXPECT_EQ(spheres[0].name, QStringLiteral("left M1"));
    EXPECT_EQ(spheres[0].centre, Eigen::Vector3d(-38, -22.5, 56));
    EXPECT_EQ(spheres[0].radius, 6);
    EXPECT_EQ(spheres[1].name, QStringLiteral("2"));
    EXPECT_EQ(spheres[2].name, QStringLiteral("3"));
    EXPECT_EQ(joined(notes), "");
}

TEST_F(SphereTable, WithoutRadiusHasTheUsualOneAndSaysSo)
{
    const std::vector<Sphere> spheres = read("x\ty\tz\tlabel\n1\t2\t3\tseed\n");
    EXPECT_EQ(spheres[0].radius, 5);
    EXPECT_EQ(spheres[0].name, QStringLiteral("seed"));
    EXPECT_THAT(joined(notes), HasSubstr("no column radius: the spheres have 5 mm"));
}

TEST_F(SphereTable, SaysWhatIsWrong)
{
    EXPECT_THAT(fault("x\ty\n1\t2\n"), HasSubstr("expected a column \"z\""));
    EXPECT_THAT(fault("x\ty\tz\n1\t2\tlow\n"),
                HasSubstr("line 2, z: found \"low\", expected millimetres"));
    EXPECT_THAT(fault("x\ty\tz\tradius\n1\t2\t3\t0\n"),
                HasSubstr("line 2, radius: found \"0\", expected millimetres above 0"));
}

} // namespace
} // namespace corvane
