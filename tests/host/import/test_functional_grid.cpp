// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/import/functional_grid.h"
#include "tests/host/support/host_files.h"

#include <cmath>

namespace corvane
{

namespace
{

Eigen::Affine3d affine(const Eigen::Matrix3d &linear, const Eigen::Vector3d &origin)
{
    Eigen::Affine3d result = Eigen::Affine3d::Identity();
    result.linear() = linear;
    result.translation() = origin;
    return result;
}

/// Grid axes along axes of the cube: column a is the step of grid axis a.
Eigen::Affine3d along(std::array<int, 3> axis, std::array<double, 3> step, Eigen::Vector3d origin)
{
    Eigen::Matrix3d linear = Eigen::Matrix3d::Zero();
    for (int a = 0; a < 3; ++a)
        linear(axis[static_cast<std::size_t>(a)], a) = step[static_cast<std::size_t>(a)];
    return affine(linear, origin);
}

const QString path = QStringLiteral("run.nii");

// ---- lattices

TEST(LatticeMap, KnowsGridsOnWholeVoxels)
{
    const GridSize size{10, 11, 12};
    const auto map = latticeMap(along({2, 0, 1}, {-3, 3, 3}, {60, 50, 200}), size, 3);
    ASSERT_TRUE(map.has_value());
    EXPECT_EQ(map->axis, (std::array<int, 3>{2, 0, 1}));
    EXPECT_EQ(map->step, (std::array<int, 3>{-3, 3, 3}));
    EXPECT_EQ(map->start, (std::array<qint64, 3>{200, 60, 50}));
}

struct OffLattice {
    const char *name;
    Eigen::Affine3d gridToCube;
    bool isOn;
};

TEST(LatticeMap, ToleratesATwentiethOfAMillimetre)
{
    const GridSize size{50, 50, 50};
    const Eigen::Matrix3d turned =
        Eigen::AngleAxisd(0.01, Eigen::Vector3d::UnitZ()).toRotationMatrix() * 3;
    for (const OffLattice &grid :
         {OffLattice{"exact", along({0, 1, 2}, {3, 3, 3}, {5, 6, 7}), true},
          OffLattice{"rounding", along({0, 1, 2}, {3.0005, 3, 3}, {5.01, 6, 7}), true},
          OffLattice{"half a voxel off", along({0, 1, 2}, {3, 3, 3}, {5.5, 6, 7}), false},
          OffLattice{"a tenth off", along({0, 1, 2}, {3, 3, 3}, {5, 6.1, 7}), false},
          OffLattice{"drifting", along({0, 1, 2}, {3.01, 3, 3}, {5, 6, 7}), false},
          OffLattice{"other spacing", along({0, 1, 2}, {2, 2, 2}, {5, 6, 7}), false},
          OffLattice{"one other spacing", along({0, 1, 2}, {3, 3, 4}, {5, 6, 7}), false},
          OffLattice{"turned", affine(turned, {5, 6, 7}), false},
          OffLattice{"far away", along({0, 1, 2}, {3, 3, 3}, {1e300, 6, 7}), false}})
        EXPECT_EQ(latticeMap(grid.gridToCube, size, 3).has_value(), grid.isOn) << grid.name;
}

TEST(CutToCube, KeepsWhatStandsAtVoxels0To255)
{
    const GridSize size{10, 4, 4};
    const auto map = latticeMap(along({0, 1, 2}, {3, 3, -3}, {-4, 250, 5}), size, 3);
    ASSERT_TRUE(map.has_value());
    const LatticeBox box = cutToCube(*map, size);
    // Axis 0: -4, -1, 2, ... 23; axis 1: 250, 253, 256, 259; axis 2: 5, 2, -1, -4.
    EXPECT_EQ(box.start, (std::array<int, 3>{2, 250, 2}));
    EXPECT_EQ(box.size, (std::array<int, 3>{8, 2, 2}));
    EXPECT_EQ(box.source, 2 + 10 * (0 + 4 * 1));
    EXPECT_EQ(box.sourceStride, (std::array<qint64, 3>{1, 10, -40}));
    EXPECT_FALSE(box.isEmpty());
}

TEST(CutToCube, IsEmptyOutside)
{
    const GridSize size{4, 4, 4};
    const auto map = latticeMap(along({0, 1, 2}, {2, 2, 2}, {256, 0, 0}), size, 2);
    ASSERT_TRUE(map.has_value());
    EXPECT_TRUE(cutToCube(*map, size).isEmpty());
}

TEST(VoxelsOutsideCube, AreCounted)
{
    EXPECT_EQ(voxelsOutsideCube(along({0, 1, 2}, {1, 1, 1}, {0, 0, 0}), {256, 256, 256}), 0);
    EXPECT_EQ(voxelsOutsideCube(along({0, 1, 2}, {3, 3, 3}, {-4, 250, 0}), {10, 4, 4}),
              160 - 8 * 2 * 4);
    EXPECT_EQ(voxelsOutsideCube(along({0, 1, 2}, {1, 1, 1}, {-0.5, 0, 0}), {2, 1, 1}), 0);
    EXPECT_EQ(voxelsOutsideCube(along({0, 1, 2}, {1, 1, 1}, {-0.75, 0, 0}), {2, 1, 1}), 1);
}

// ---- resolution

TEST(NearestResolution, IsTheSideOfAVoxelOfTheSameVolume)
{
    EXPECT_EQ(nearestResolution(along({0, 1, 2}, {3, 3, 3}, {0, 0, 0})), 3);
    EXPECT_EQ(nearestResolution(along({2, 0, 1}, {-2.0833, 2.0833, 2.3}, {0, 0, 0})), 2);
    EXPECT_EQ(nearestResolution(along({0, 1, 2}, {4, 4, 8}, {0, 0, 0})), 5);
    EXPECT_EQ(nearestResolution(along({0, 1, 2}, {25, 25, 25}, {0, 0, 0})), 25);
    EXPECT_EQ(nearestResolution(along({0, 1, 2}, {0.2, 0.2, 0.2}, {0, 0, 0})), 1);
    EXPECT_EQ(nearestResolution(along({0, 1, 2}, {1e9, 1e9, 1e9}, {0, 0, 0})), 256);
}

// ---- grids that are copied

TEST(FunctionalGrid, CopiesVoxelsOnTheLattice)
{
    const GridSize size{5, 4, 3};
    const Eigen::Affine3d gridToCube = along({2, 0, 1}, {-3, -3, 3}, {110, 52, 200});
    const FunctionalGrid grid = layFunctionalGrid(gridToCube, size, 3, path);
    EXPECT_TRUE(grid.copied);
    EXPECT_EQ(grid.start, (std::array<int, 3>{101, 52, 188}));
    EXPECT_EQ(grid.size, (std::array<int, 3>{4, 3, 5}));
    EXPECT_EQ(grid.voxelsCut, 0);
    EXPECT_EQ(grid.cubeVoxel(1, 2, 3), (std::array<int, 3>{104, 58, 197}));

    std::vector<short> volume(60);
    for (std::size_t n = 0; n < volume.size(); ++n)
        volume[n] = static_cast<short>(1000 - 7 * static_cast<int>(n));
    std::vector<short> sampled(60);
    const VolumeSampler sampler(grid);
    sampler.sample(volume.data(), sampled.data());
    EXPECT_EQ(sampler.pointsOutside(), 0);
    std::vector<float> floats(volume.begin(), volume.end());
    std::vector<float> sampledFloats(60);
    sampler.sample(floats.data(), sampledFloats.data());
    // Each lattice point against the voxel that the affine puts there.
    for (int k = 0; k < 5; ++k)
        for (int j = 0; j < 3; ++j)
            for (int i = 0; i < 4; ++i) {
                const auto cube = grid.cubeVoxel(i, j, k);
                const Eigen::Vector3d voxel =
                    gridToCube.inverse() * Eigen::Vector3d(cube[0], cube[1], cube[2]);
                const auto index = static_cast<std::size_t>(
                    std::lround(voxel[0]) +
                    5 * (std::lround(voxel[1]) + 4 * std::lround(voxel[2])));
                const auto place = static_cast<std::size_t>(i + 4 * (j + 3 * k));
                EXPECT_EQ(sampled[place], volume[index]);
                EXPECT_EQ(sampledFloats[place], float(volume[index]));
            }
}

TEST(FunctionalGrid, CutsAndCountsWhatLiesOutsideTheCube)
{
    const FunctionalGrid grid =
        layFunctionalGrid(along({0, 1, 2}, {3, 3, 3}, {-4, 250, 0}), {10, 4, 4}, 3, path);
    EXPECT_TRUE(grid.copied);
    EXPECT_EQ(grid.voxelsCut, 160 - 8 * 2 * 4);
    EXPECT_EQ(grid.start, (std::array<int, 3>{2, 250, 0}));
    EXPECT_EQ(grid.size, (std::array<int, 3>{8, 2, 4}));
}

// ---- grids that are interpolated

TEST(FunctionalGrid, CentresTheLatticeInWhatWasRecorded)
{
    // Voxels of 2.0833 x 2.0833 x 2.3 mm: 20.8 x 20.8 x 41.4 mm from face to face.
    const FunctionalGrid grid = layFunctionalGrid(
        along({0, 1, 2}, {2.0833, 2.0833, 2.3}, {100, 100, 100}), {10, 10, 18}, 2, path);
    EXPECT_FALSE(grid.copied);
    EXPECT_EQ(grid.size, (std::array<int, 3>{10, 10, 20}));
    for (int axis = 0; axis < 3; ++axis) {
        const double voxel = axis < 2 ? 2.0833 : 2.3;
        const double count = axis < 2 ? 10 : 18;
        const double middle = 100 + voxel * (count - 1) / 2;
        const auto a = static_cast<std::size_t>(axis);
        EXPECT_NEAR(grid.start[a] + 2.0 * (grid.size[a] - 1) / 2, middle, 0.51);
    }
    EXPECT_EQ(VolumeSampler(grid).pointsOutside(), 0);
}

TEST(FunctionalGrid, InterpolatesALinearImageExactly)
{
    const Eigen::Matrix3d turned =
        (Eigen::AngleAxisd(0.3, Eigen::Vector3d(1, 2, 3).normalized()).toRotationMatrix()) *
        Eigen::Vector3d(2.5, 3, 3.5).asDiagonal();
    const GridSize size{20, 18, 16};
    const Eigen::Affine3d gridToCube = affine(turned, {90, 80, 100});
    const auto value = [](const Eigen::Vector3d &cube) {
        return 0.5 * cube[0] - 1.25 * cube[1] + 2 * cube[2] + 10;
    };
    std::vector<float> volume;
    for (int k = 0; k < size[2]; ++k)
        for (int j = 0; j < size[1]; ++j)
            for (int i = 0; i < size[0]; ++i)
                volume.push_back(static_cast<float>(value(gridToCube * Eigen::Vector3d(i, j, k))));

    const FunctionalGrid grid = layFunctionalGrid(gridToCube, size, 3, path);
    ASSERT_FALSE(grid.copied);
    const VolumeSampler sampler(grid);
    std::vector<float> sampled(static_cast<std::size_t>(grid.sampleCount()), -1e9f);
    sampler.sample(volume.data(), sampled.data());
    int inside = 0;
    int outside = 0;
    std::size_t place = 0;
    for (int k = 0; k < grid.size[2]; ++k)
        for (int j = 0; j < grid.size[1]; ++j)
            for (int i = 0; i < grid.size[0]; ++i, ++place) {
                const auto cube = grid.cubeVoxel(i, j, k);
                const Eigen::Vector3d point(cube[0], cube[1], cube[2]);
                const Eigen::Vector3d voxel = gridToCube.inverse() * point;
                bool within = true;
                bool near = true;
                for (int axis = 0; axis < 3; ++axis) {
                    const auto last = static_cast<double>(size[static_cast<std::size_t>(axis)] - 1);
                    within = within && voxel[axis] >= 0 && voxel[axis] <= last;
                    near = near && voxel[axis] >= -0.5 && voxel[axis] <= last + 0.5;
                }
                if (within) {
                    ++inside;
                    EXPECT_NEAR(sampled[place], value(point), 1e-3);
                } else if (!near) {
                    ++outside;
                    EXPECT_EQ(sampled[place], 0);
                } else {
                    EXPECT_NE(sampled[place], -1e9f);
                }
            }
    EXPECT_GT(inside, 1000);
    EXPECT_GT(outside, 100);
    EXPECT_EQ(sampler.pointsOutside(), outside);
}

TEST(FunctionalGrid, KeepsTheValuesOfTheOutermostVoxelsForHalfAVoxel)
{
    // One voxel of 4 mm along each axis, at 100.25: lattice points around it.
    const FunctionalGrid grid = layFunctionalGrid(
        along({0, 1, 2}, {4, 4, 4}, {100.25, 100.25, 100.25}), {1, 1, 1}, 1, path);
    EXPECT_EQ(grid.size, (std::array<int, 3>{4, 4, 4}));
    std::vector<float> sampled(64);
    const float value = 7;
    VolumeSampler(grid).sample(&value, sampled.data());
    EXPECT_EQ(sampled, std::vector<float>(64, 7));
}

TEST(FunctionalGrid, StaysWithinTheCube)
{
    const FunctionalGrid grid = layFunctionalGrid(
        along({0, 1, 2}, {3.3, 3.3, 3.3}, {-20, 200, 100}), {64, 64, 30}, 3, path);
    EXPECT_FALSE(grid.copied);
    EXPECT_GT(grid.voxelsCut, 0);
    for (std::size_t axis = 0; axis < 3; ++axis) {
        EXPECT_GE(grid.start[axis], 0);
        EXPECT_LE(grid.start[axis] + 3 * (grid.size[axis] - 1), 255);
        EXPECT_GE(grid.size[axis], 1);
    }
}

TEST(FunctionalGrid, RefusesARunOutsideTheCube)
{
    for (const double far : {300.0, 300.5})
        EXPECT_EQ(
            errorOf([&] {
                layFunctionalGrid(along({0, 1, 2}, {3, 3, 3}, {far, 100, 100}), {4, 4, 4}, 3, path);
            }),
            "run.nii: position relative to the anatomy: found a run that covers voxels " +
                QString::number(far - 1.5, 'f', 1).toStdString() + " to " +
                QString::number(far + 10.5, 'f', 1).toStdString() +
                ", 98.5 to 110.5, 98.5 to 110.5, none with its centre inside, expected one that "
                "overlaps the anatomy's cube, voxels 0 to 255");
}

TEST(FunctionalGrid, TellsOfARunFarAwayInShortNumbers)
{
    const double far = 1.15e31;
    EXPECT_EQ(
        errorOf([&] {
            layFunctionalGrid(along({0, 1, 2}, {3, 3, 3}, {far, -far, 100}), {4, 4, 4}, 3, path);
        }),
        "run.nii: position relative to the anatomy: found a run that covers voxels 1.15e31 "
        "to 1.15e31, -1.15e31 to -1.15e31, 98.5 to 110.5, none with its centre inside, "
        "expected one that overlaps the anatomy's cube, voxels 0 to 255");
}

TEST(FunctionalGrid, RefusesARunOfWhichOnlyEdgesOfVoxelsReachIntoTheCube)
{
    // Centres at -1 and below, outer faces at 1.
    EXPECT_EQ(
        errorOf([&] {
            layFunctionalGrid(along({0, 1, 2}, {-4, 4, 4}, {-1, 100, 100}), {4, 4, 4}, 3, path);
        }),
        "run.nii: position relative to the anatomy: found a run that covers voxels -15.0 to "
        "1.0, 98.0 to 114.0, 98.0 to 114.0, none with its centre inside, expected one that "
        "overlaps the anatomy's cube, voxels 0 to 255");
    // One plane of centres inside is enough.
    EXPECT_EQ(layFunctionalGrid(along({0, 1, 2}, {-4, 4, 4}, {1, 100, 100}), {4, 4, 4}, 3, path)
                  .voxelsCut,
              48);
}

TEST(FunctionalGrid, KnowsWhereItWasRecorded)
{
    const Eigen::Affine3d gridToCube =
        affine(Eigen::AngleAxisd(0.3, Eigen::Vector3d(1, 2, 3).normalized()).toRotationMatrix() * 3,
               {90, 80, 100});
    const FunctionalGrid grid = layFunctionalGrid(gridToCube, {20, 18, 16}, 3, path);
    qint64 recorded = 0;
    for (int k = 0; k < grid.size[2]; ++k)
        for (int j = 0; j < grid.size[1]; ++j)
            for (int i = 0; i < grid.size[0]; ++i) {
                const std::array<int, 3> cube = grid.cubeVoxel(i, j, k);
                const auto found = grid.recordedPoint(Eigen::Vector3d(cube[0], cube[1], cube[2]));
                EXPECT_EQ(found.has_value(), grid.isRecorded(i, j, k));
                if (found) {
                    EXPECT_EQ(*found, (std::array<int, 3>{i, j, k}));
                    ++recorded;
                }
            }
    EXPECT_EQ(recorded, grid.sampleCount() - VolumeSampler(grid).pointsOutside());
    EXPECT_LT(recorded, grid.sampleCount());
    EXPECT_FALSE(grid.recordedPoint({0, 0, 0}));
}

} // namespace

} // namespace corvane
