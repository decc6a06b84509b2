// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include "statistics/components.h"
#include "tests/statistics/error_text.h"

namespace
{

using namespace statistics;
using Edges = std::vector<Index>;

/// Seven nodes; the values of some edges, 0 elsewhere.
Eigen::ArrayXd graph(const std::vector<std::tuple<int, int, double>> &edges)
{
    Eigen::ArrayXd values = Eigen::ArrayXd::Zero(21);
    const std::vector<NodePair> pairs = node_pairs(7);
    for (const auto &[i, j, value] : edges) {
        for (std::size_t e = 0; e < pairs.size(); ++e) {
            if (pairs[e].first == i && pairs[e].second == j) {
                values(static_cast<Index>(e)) = value;
            }
        }
    }
    return values;
}

TEST(Components, OfEdgesStrictlyAboveTheThreshold)
{
    // A triangle, a chain of two edges, and one edge that equals the threshold.
    const Eigen::ArrayXd values = graph({{0, 1, 3.0},
                                         {0, 2, 2.5},
                                         {1, 2, 4.0},
                                         {3, 4, 9.0},
                                         {4, 5, 2.25},
                                         {5, 6, 2.0},
                                         {2, 3, -8.0}});
    const std::vector<Component> found = find_components(values, 2.0);
    ASSERT_EQ(found.size(), 2U);
    EXPECT_EQ(found[0].edges, Edges({0, 1, 6}));
    EXPECT_NEAR(found[0].intensity, 1.0 + 0.5 + 2.0, 1e-15);
    EXPECT_EQ(found[1].edges, Edges({15, 18}));
    EXPECT_NEAR(found[1].intensity, 7.25, 1e-15);
    EXPECT_EQ(found[0].side, Side::greater);
    EXPECT_EQ(find_components(values, 1.9)[0].edges.size(), 3U);
    EXPECT_EQ(find_components(values, 9.0).size(), 0U);
    const std::vector<Component> less = find_components(-values, 2.0, Side::less);
    ASSERT_EQ(less.size(), 1U);
    EXPECT_EQ(less[0].side, Side::less);
}

TEST(Components, LargeThenStrongThenFirst)
{
    const std::vector<Component> found =
        find_components(graph({{0, 1, 2.0}, {2, 3, 5.0}, {4, 5, 2.0}, {4, 6, 2.0}}), 1.0);
    ASSERT_EQ(found.size(), 3U);
    EXPECT_EQ(found[0].edges.size(), 2U);
    EXPECT_EQ(found[1].intensity, 4.0);
    EXPECT_EQ(found[2].edges, Edges({0}));
    const std::vector<Component> equal =
        find_components(graph({{2, 3, 2.0}, {0, 1, 2.0}, {4, 6, 2.0}}), 1.0);
    EXPECT_EQ(equal[0].edges, Edges({0}));
    EXPECT_LT(equal[1].edges[0], equal[2].edges[0]);
}

TEST(Components, ExtentAndIntensityMayBeOfDifferentOnes)
{
    GrowingComponents growing(7);
    EXPECT_EQ(growing.largest_extent(), 0.0);
    EXPECT_EQ(growing.largest_intensity(), 0.0);
    growing.add({0, 1}, 10.0);
    growing.add({2, 3}, 1.0);
    growing.add({3, 4}, 1.0);
    EXPECT_EQ(growing.largest_extent(), 2.0);
    EXPECT_EQ(growing.largest_intensity(), 10.0);
    growing.add({1, 4}, 0.5);
    EXPECT_EQ(growing.largest_extent(), 4.0);
    EXPECT_EQ(growing.largest_intensity(), 12.5);
    EXPECT_EQ(growing.representative(0), growing.representative(2));
    growing.clear();
    EXPECT_EQ(growing.largest_extent(), 0.0);
    EXPECT_NE(growing.representative(0), growing.representative(2));
}

TEST(Components, NeedAnUpperTriangle)
{
    EXPECT_EQ(error_text([] { find_components(Eigen::ArrayXd::Zero(5), 1.0); }),
              "5 edges are no upper triangle of a matrix");
}

} // namespace
