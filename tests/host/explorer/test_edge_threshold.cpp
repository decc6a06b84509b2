// SPDX-License-Identifier: GPL-3.0-or-later
// Which edges a threshold keeps, against counts and trees made here.
#include "host/explorer/edge_threshold.h"

#include <cmath>
#include <gmock/gmock.h>
#include <limits>
#include <random>
#include <set>

namespace corvane
{
namespace
{

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

Eigen::MatrixXd randomMatrix(int nodes, unsigned seed)
{
    std::mt19937 random(seed);
    Eigen::MatrixXd values = Eigen::MatrixXd::Identity(nodes, nodes);
    for (int j = 1; j < nodes; ++j)
        for (int i = 0; i < j; ++i)
            values(i, j) = values(j, i) = double(random() % 20001) / 10000 - 1;
    return values;
}

std::vector<std::pair<int, int>> pairsOf(const std::vector<NetworkEdge> &edges)
{
    std::vector<std::pair<int, int>> pairs;
    for (const NetworkEdge &edge : edges)
        pairs.emplace_back(edge.from, edge.to);
    return pairs;
}

TEST(EdgeThreshold, DensityKeepsTheRoundedNumberOfStrongestEdges)
{
    const Eigen::MatrixXd values = randomMatrix(21, 1); // 210 pairs
    const RankedEdges ranked(values, EdgeSigns::Both);
    EXPECT_EQ(ranked.pairs(), 210U);
    for (const auto &[density, count] :
         {std::pair(0.05, 11U), {0.1, 21U}, {0.0, 0U}, {1.0, 210U}}) {
        const auto kept = ranked.kept({ThresholdKind::Density, density});
        ASSERT_EQ(kept.size(), count) << density;
        double weakest = 2;
        for (const NetworkEdge &edge : kept)
            weakest = std::min(weakest, std::abs(edge.value));
        unsigned stronger = 0;
        for (int j = 1; j < 21; ++j)
            for (int i = 0; i < j; ++i)
                stronger += std::abs(values(i, j)) > weakest ? 1 : 0;
        EXPECT_LE(stronger, count) << density;
    }
}

TEST(EdgeThreshold, TiesGoByTheNodes)
{
    Eigen::MatrixXd values = Eigen::MatrixXd::Constant(4, 4, 0.5);
    values(2, 3) = values(3, 2) = -0.5;
    values(1, 3) = values(3, 1) = 0.6;
    const RankedEdges ranked(values, EdgeSigns::Both);
    EXPECT_THAT(pairsOf(ranked.kept({ThresholdKind::Density, 0.5})),
                testing::ElementsAre(std::pair(1, 3), std::pair(0, 1), std::pair(0, 2)));
    EXPECT_EQ(pairsOf(ranked.kept({ThresholdKind::Density, 1})).back(), std::pair(2, 3));
}

TEST(EdgeThreshold, NodesWithoutValuesAreNotCounted)
{
    Eigen::MatrixXd values = randomMatrix(5, 2);
    values.row(2).setConstant(nan);
    values.col(2).setConstant(nan);
    const RankedEdges ranked(values, EdgeSigns::Both);
    EXPECT_EQ(ranked.pairs(), 6U);
    EXPECT_EQ(ranked.kept({ThresholdKind::Density, 0.5}).size(), 3U);
}

TEST(EdgeThreshold, SignsAreKeptSeparately)
{
    const Eigen::MatrixXd values = randomMatrix(12, 3);
    const auto positive = RankedEdges(values, EdgeSigns::Positive)
                              .kept({ThresholdKind::Weight, 0.3, EdgeSigns::Positive});
    const auto negative = RankedEdges(values, EdgeSigns::Negative)
                              .kept({ThresholdKind::Weight, 0.3, EdgeSigns::Negative});
    const auto both = RankedEdges(values, EdgeSigns::Both).kept({ThresholdKind::Weight, 0.3});
    EXPECT_FALSE(positive.empty());
    EXPECT_FALSE(negative.empty());
    EXPECT_EQ(both.size(), positive.size() + negative.size());
    for (const NetworkEdge &edge : positive)
        EXPECT_GE(edge.value, 0.3);
    for (const NetworkEdge &edge : negative)
        EXPECT_LE(edge.value, -0.3);
}

TEST(EdgeThreshold, AWeightKeepsEdgesOfThatWeightToo)
{
    Eigen::MatrixXd values = Eigen::MatrixXd::Zero(3, 3);
    values(0, 1) = values(1, 0) = 0.25;
    values(0, 2) = values(2, 0) = -0.5;
    const RankedEdges ranked(values, EdgeSigns::Both);
    EXPECT_EQ(ranked.kept({ThresholdKind::Weight, 0.25}).size(), 2U);
    EXPECT_EQ(ranked.kept({ThresholdKind::Weight, 0.5}).size(), 1U);
    EXPECT_EQ(ranked.kept({ThresholdKind::Weight, 0.51}).size(), 0U);
}

/// Prim's way, as far from the one under test as can be.
std::set<std::pair<int, int>> largestTree(const Eigen::MatrixXd &values)
{
    std::set<std::pair<int, int>> tree;
    std::set<int> joined{0};
    while (joined.size() < std::size_t(values.rows())) {
        double best = -1;
        std::pair<int, int> edge;
        int next = -1;
        for (const int i : joined)
            for (int j = 0; j < values.cols(); ++j)
                if (joined.count(j) == 0 && std::abs(values(i, j)) > best) {
                    best = std::abs(values(i, j));
                    edge = {std::min(i, j), std::max(i, j)};
                    next = j;
                }
        tree.insert(edge);
        joined.insert(next);
    }
    return tree;
}

TEST(EdgeThreshold, TreeComesFirstAndTheStrongestOthersFollow)
{
    const Eigen::MatrixXd values = randomMatrix(15, 4); // 105 pairs, a tree of 14
    const RankedEdges ranked(values, EdgeSigns::Both);
    const auto tree = largestTree(values);
    const auto few = pairsOf(ranked.kept({ThresholdKind::TreeAndDensity, 0.01}));
    EXPECT_EQ(std::set(few.begin(), few.end()), tree);
    const auto more = ranked.kept({ThresholdKind::TreeAndDensity, 0.2}); // 21
    ASSERT_EQ(more.size(), 21U);
    auto expected = tree;
    for (const NetworkEdge &edge : ranked.edges())
        if (expected.size() < 21)
            expected.insert({edge.from, edge.to});
    const auto pairs = pairsOf(more);
    EXPECT_EQ(std::set(pairs.begin(), pairs.end()), expected);
}

TEST(EdgeThreshold, SaysWhatIsDrawn)
{
    EXPECT_EQ(drawnText({ThresholdKind::Density, 0.05}, 3990, 79800).toStdString(),
              "strongest 5 % of 79,800 edges, 3,990");
    EXPECT_EQ(drawnText({ThresholdKind::Weight, 0.25, EdgeSigns::Negative}, 12, 703).toStdString(),
              "edges of at least 0.25 of 703, negative ones only, 12");
    EXPECT_EQ(drawnText({ThresholdKind::TreeAndDensity, 0.125}, 88, 703).toStdString(),
              "spanning tree and strongest edges to 12.5 % of 703, 88");
}

} // namespace
} // namespace corvane
