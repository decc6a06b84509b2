// SPDX-License-Identifier: GPL-3.0-or-later
// The nodes of an atlas on the grid of a run.
#include "host/extract/node_map.h"
#include "host/extract/node_order.h"
#include "tests/host/support/host_files.h"
#include "tests/host/support/notes.h"

#include <gmock/gmock.h>

namespace corvane
{
namespace
{

using testing::HasSubstr;

Eigen::Affine3d spaced(double millimetres, double x = 0, double y = 0, double z = 0)
{
    return Eigen::Translation3d(x, y, z) * Eigen::Scaling(millimetres);
}

/// A run of 4 x 2 x 1 voxels of 2 mm.
RunGrid smallRun()
{
    return {QStringLiteral("run.nii"), {4, 2, 1}, spaced(2)};
}

template <typename Value>
Image3d<Value> image(const GridSize &size, const Eigen::Affine3d &toWorld,
                     const std::vector<Value> &voxels)
{
    Image3d<Value> result;
    result.size = size;
    result.toWorld = toWorld;
    result.voxels = voxels;
    return result;
}

class NodeMapping : public testing::Test
{
protected:
    NodeMap map(const Image3d<qint32> &atlas, const Image3d<float> &mask = {})
    {
        return mapNodes(smallRun(), atlas, QStringLiteral("atlas.nii"), names, mask,
                        QStringLiteral("mask.nii"), notes);
    }

    LabelTable names;
    QStringList notes;
};

TEST_F(NodeMapping, VoxelsThatFollowEachOtherAreOneStretch)
{
    const NodeMap found = map(image<qint32>({4, 2, 1}, spaced(2), {0, 7, 7, 3, 3, 3, 0, 7}));
    ASSERT_EQ(found.nodes.size(), 2U);
    EXPECT_EQ(found.nodes[0].label, 3);
    EXPECT_EQ(found.nodes[0].name, QStringLiteral("3"));
    EXPECT_EQ(found.nodes[0].voxels, 3);
    EXPECT_EQ(found.nodes[1].label, 7);
    EXPECT_EQ(found.nodes[1].voxels, 3);
    ASSERT_EQ(found.stretches.size(), 3U);
    EXPECT_EQ(found.stretches[1].start, 3);
    EXPECT_EQ(found.stretches[1].length, 3);
    EXPECT_EQ(found.stretches[1].node, 0);
    EXPECT_EQ(found.stretches[2].start, 7);
    EXPECT_EQ(found.stretches[2].node, 1);
    EXPECT_EQ(found.voxelCount(), 6);
    EXPECT_EQ(joined(notes), "");
}

TEST_F(NodeMapping, NamesComeFromTheTableAndLossesAreSaid)
{
    names = {{7, {QStringLiteral("Insula"), {}}}, {9, {QStringLiteral("Tectum"), {}}}};
    const NodeMap found = map(image<qint32>({4, 2, 1}, spaced(2), {0, 7, 7, 3, 3, 3, 0, 7}));
    ASSERT_EQ(found.nodes.size(), 3U);
    EXPECT_EQ(found.nodes[1].name, QStringLiteral("Insula"));
    EXPECT_EQ(found.nodes[2].name, QStringLiteral("Tectum"));
    EXPECT_EQ(found.nodes[2].voxels, 0);
    EXPECT_EQ(joined(notes), "atlas.nii: 1 label without a name in the table, named by numbers: 3\n"
                             "atlas.nii: 1 label of the table without a voxel: Tectum");
}

TEST_F(NodeMapping, NetworksComeFromTheTable)
{
    names = {{7, {QStringLiteral("Insula"), {}, QStringLiteral("Limbic"), QStringLiteral("L")}}};
    const NodeMap found = map(image<qint32>({4, 2, 1}, spaced(2), {0, 7, 7, 3, 3, 3, 0, 7}));
    EXPECT_EQ(found.nodes[0].network, QString());
    EXPECT_EQ(found.nodes[1].network, QStringLiteral("Limbic"));
    EXPECT_EQ(found.nodes[1].hemisphere, QStringLiteral("L"));
}

TEST(NodeOrder, NodesOfANetworkStandTogether)
{
    std::vector<Node> nodes(6);
    const char *const networks[] = {"", "B", "A", "B", "", "A"};
    for (std::size_t n = 0; n < nodes.size(); ++n)
        nodes[n].network = QLatin1String(networks[n]);
    const NodeOrder order = orderByNetwork(nodes);
    EXPECT_EQ(order.nodes, (std::vector<int>{1, 3, 2, 5, 0, 4}));
    ASSERT_EQ(order.groups.size(), 3U);
    EXPECT_EQ(order.groups[0].name, QStringLiteral("B"));
    EXPECT_EQ(order.groups[1].name, QStringLiteral("A"));
    EXPECT_EQ(order.groups[1].first, 2);
    EXPECT_EQ(order.groups[1].count, 2);
    EXPECT_EQ(order.groups[2].name, QStringLiteral("no network"));
    EXPECT_EQ(order.groups[2].first, 4);
}

TEST(NodeOrder, WithoutNetworksItIsThatOfTheLabels)
{
    const NodeOrder order = orderByNetwork(std::vector<Node>(3));
    EXPECT_EQ(order.nodes, (std::vector<int>{0, 1, 2}));
    EXPECT_TRUE(order.groups.empty());
    EXPECT_TRUE(orderByNetwork({}).nodes.empty());
}

TEST_F(NodeMapping, AnotherGridIsTakenByNearestNeighbour)
{
    // Voxels of 4 mm: each holds two of the run along each axis.
    const NodeMap found = map(image<qint32>({2, 1, 1}, spaced(4, 1, 1, 0), {1, 2}));
    ASSERT_EQ(found.stretches.size(), 4U);
    EXPECT_EQ(found.nodes[0].voxels, 4);
    EXPECT_EQ(found.nodes[1].voxels, 4);
    EXPECT_DOUBLE_EQ(found.nodes[0].wholeVoxels, 8); // of the same size
    EXPECT_THAT(joined(notes), HasSubstr("atlas.nii: the grid (2 x 1 x 1 voxels of 4 x 4 x 4 mm) "
                                         "is not that of the run (4 x 2 x 1 voxels of 2 x 2 x 2 "
                                         "mm): values are taken by nearest neighbour"));
}

TEST_F(NodeMapping, AsManyVoxelsInAnotherPlaceAreAnotherGrid)
{
    const std::vector<qint32> labels{0, 7, 7, 3, 3, 3, 0, 7};
    const NodeMap near = map(image<qint32>({4, 2, 1}, spaced(2, 0.04, 0, 0), labels));
    EXPECT_EQ(near.nodes[0].voxels, 3);
    EXPECT_EQ(joined(notes), "");
    // A voxel further to the right, so that the last column is lost.
    const NodeMap found = map(image<qint32>({4, 2, 1}, spaced(2, 2, 0, 0), labels));
    EXPECT_EQ(found.nodes[0].voxels, 2);
    EXPECT_EQ(found.nodes[1].voxels, 2);
    ASSERT_EQ(found.stretches.size(), 2U);
    EXPECT_EQ(found.stretches[0].start, 2);
    EXPECT_EQ(found.stretches[1].start, 5);
    EXPECT_THAT(joined(notes), HasSubstr("by nearest neighbour"));
}

TEST_F(NodeMapping, ARegionThatTheRunCutsOffIsNotWhole)
{
    // 8 x 2 x 1 voxels of 2 mm, of which the run has the first four columns.
    const NodeMap found =
        map(image<qint32>({8, 2, 1}, spaced(2), {0, 0, 5, 5, 5, 5, 5, 5, 0, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(found.nodes[0].voxels, 2);
    EXPECT_DOUBLE_EQ(found.nodes[0].wholeVoxels, 6);
}

TEST_F(NodeMapping, AtLeastTheVoxelsOfTheRunAreWhole)
{
    // One voxel of 2.9 mm, as large as three of the run, in which four of them have their centres.
    const NodeMap found = map(image<qint32>({1, 1, 1}, spaced(2.9, 1, 1, 0), {1}));
    EXPECT_EQ(found.nodes[0].voxels, 4);
    EXPECT_EQ(found.nodes[0].wholeVoxels, 4);
}

TEST_F(NodeMapping, VoxelsOutsideTheMaskAreLost)
{
    const NodeMap found = map(image<qint32>({4, 2, 1}, spaced(2), {7, 7, 7, 7, 3, 3, 3, 3}),
                              image<float>({4, 2, 1}, spaced(2), {1, NAN, 0.5f, 0, 0, 0, 0, 0}));
    EXPECT_EQ(found.nodes[0].voxels, 4);
    EXPECT_EQ(found.nodes[1].voxels, 4);
    ASSERT_EQ(found.stretches.size(), 2U);
    EXPECT_EQ(found.stretches[0].start, 0);
    EXPECT_EQ(found.stretches[1].start, 2);
    EXPECT_EQ(found.voxelCount(), 2);
    // Pictures show them all the same.
    ASSERT_EQ(found.outside.size(), 3U);
    EXPECT_EQ(found.outside[0].start, 1);
    EXPECT_EQ(found.outside[1].start, 3);
    EXPECT_EQ(found.outside[1].length, 1);
    EXPECT_EQ(found.outside[2].length, 4);
    EXPECT_EQ(found.outside[2].node, 0);
}

TEST_F(NodeMapping, SpacesThatDoNotOverlapAreRefused)
{
    const Image3d<qint32> here = image<qint32>({4, 2, 1}, spaced(2), {7, 7, 7, 7, 3, 3, 3, 3});
    EXPECT_EQ(errorOf([&] {
                  map(image<qint32>({2, 1, 1}, spaced(4, 500, 0, 0), {1, 2}));
              }),
              "atlas.nii: position: found no voxel of it in the run run.nii, expected an image in "
              "the space of the run");
    EXPECT_THAT(errorOf([&] {
                    map(here, image<float>({1, 1, 1}, spaced(4, 500, 0, 0), {1}));
                }),
                HasSubstr("mask.nii: position"));
    EXPECT_THAT(errorOf([&] {
                    map(here, image<float>({1, 1, 1}, spaced(4), {0}));
                }),
                HasSubstr("mask.nii: position"));
}

TEST_F(NodeMapping, AnImageThatIsNoAtlasIsRefused)
{
    EXPECT_THAT(errorOf([&] {
                    map(image<qint32>({4, 2, 1}, spaced(2), {0, 0, 0, 0, 0, 0, 0, 0}));
                }),
                HasSubstr("found no label, expected an image of labels"));
    std::vector<qint32> many(30000);
    for (std::size_t n = 0; n < many.size(); ++n)
        many[n] = qint32(n);
    EXPECT_THAT(errorOf([&] {
                    map(image<qint32>({30000, 1, 1}, spaced(2), many));
                }),
                HasSubstr("more than 20000 labels"));
}

} // namespace
} // namespace corvane
