// SPDX-License-Identifier: GPL-3.0-or-later
// Graphs whose measures follow from a formula.

#include <cmath>

#include <gtest/gtest.h>
#include <nodalis/nodalis.h>

#include "tests/nodalis/graphs.h"
#include "tests/nodalis/near.h"

namespace
{

constexpr double pi = 3.14159265358979323846;
constexpr float weight = 0.3F;

Eigen::ArrayXd all(Eigen::Index n, double value)
{
    return Eigen::ArrayXd::Constant(n, value);
}

/// Entry i is made from i.
template <typename Function>
Eigen::ArrayXd each(Eigen::Index n, Function function)
{
    Eigen::ArrayXd result(n);
    for (Eigen::Index i = 0; i < n; ++i) {
        result[i] = function(static_cast<double>(i));
    }
    return result;
}

Eigen::MatrixXf kept_weights(const Eigen::MatrixXf &graph)
{
    return std::get<0>(nodalis::mst::minimum_spanning_tree(graph, false, true));
}

class CompleteGraph : public testing::TestWithParam<int>
{
};

TEST_P(CompleteGraph, EveryNodeIsAlike)
{
    const int n = GetParam();
    const Eigen::MatrixXf graph = graphs::complete(n, weight);
    const double w = double{weight};
    EXPECT_TRUE(near(nodalis::degree(graph), all(n, n - 1.0), 0.0));
    EXPECT_TRUE(near(nodalis::strength(graph), all(n, (n - 1.0) * w)));
    EXPECT_TRUE(near(nodalis::clustering_coeff(graph), all(n, n > 2 ? w : 0.0)));
    EXPECT_TRUE(near(nodalis::local_efficiency(graph), all(n, n > 2 ? w : 0.0)));
    EXPECT_TRUE(near(nodalis::global_efficiency(graph), w));
    EXPECT_TRUE(near(nodalis::nodal_global_efficiency(graph), all(n, w)));
    EXPECT_TRUE(near(nodalis::eigenvector_centrality(graph), all(n, 1.0 / std::sqrt(n))));
    EXPECT_EQ(kept_weights(graph), graphs::star(n, weight));
}

TEST_P(CompleteGraph, SpectrumIsOneLargeAndManyEqual)
{
    const int n = GetParam();
    Eigen::MatrixXf graph = graphs::complete(n);
    Eigen::MatrixXf nothing;
    EXPECT_TRUE(near(nodalis::distances::spectral_euclidean(graph, nothing, 0),
                     std::sqrt((n - 1.0) * (n - 1.0) + (n - 1.0))));
}

INSTANTIATE_TEST_SUITE_P(Sizes, CompleteGraph, testing::Values(2, 3, 4, 7, 16, 33, 100, 257));

class Star : public testing::TestWithParam<int>
{
};

TEST_P(Star, CentreAndLeavesDiffer)
{
    const int n = GetParam();
    const double leaves = n - 1.0;
    const double w = double{weight};
    const Eigen::MatrixXf graph = graphs::star(n, weight);
    const auto centre_or_leaf = [&](double centre, double leaf) {
        return each(n, [=](double i) { return i == 0.0 ? centre : leaf; });
    };
    const double leaf_efficiency = (w + (leaves - 1.0) * w / 2.0) / leaves;
    EXPECT_TRUE(near(nodalis::degree(graph), centre_or_leaf(leaves, 1.0), 0.0));
    EXPECT_TRUE(near(nodalis::strength(graph), centre_or_leaf(leaves * w, w)));
    EXPECT_TRUE(near(nodalis::clustering_coeff(graph), all(n, 0.0)));
    EXPECT_TRUE(near(nodalis::local_efficiency(graph), all(n, 0.0)));
    EXPECT_TRUE(near(nodalis::nodal_global_efficiency(graph), centre_or_leaf(w, leaf_efficiency)));
    EXPECT_TRUE(near(nodalis::global_efficiency(graph), (w + leaves * leaf_efficiency) / n));
    EXPECT_TRUE(near(nodalis::eigenvector_centrality(graph),
                     centre_or_leaf(std::sqrt(0.5), std::sqrt(0.5 / leaves))));
    EXPECT_EQ(kept_weights(graph), graph);
}

INSTANTIATE_TEST_SUITE_P(Sizes, Star, testing::Values(2, 3, 6, 17, 64, 200));

class Path : public testing::TestWithParam<int>
{
};

TEST_P(Path, LengthsAddUp)
{
    const int n = GetParam();
    const Eigen::MatrixXf graph = graphs::path(n, weight);
    double sum = 0.0;
    for (int hops = 1; hops < n; ++hops) {
        sum += 2.0 * (n - hops) * double{weight} / hops;
    }
    EXPECT_TRUE(near(nodalis::global_efficiency(graph), sum / (n * (n - 1.0))));
    EXPECT_TRUE(near(nodalis::clustering_coeff(graph), all(n, 0.0)));
    EXPECT_TRUE(near(nodalis::local_efficiency(graph), all(n, 0.0)));
    EXPECT_EQ(kept_weights(graph), graph);
}

TEST_P(Path, EigenvectorIsASineWave)
{
    const int n = GetParam();
    // The gap to the second eigenvalue closes with 1/n^2; the tolerance follows it.
    const double gap =
        1.0 - std::cos(2.0 * pi / (n + 1.0)) / std::max(std::cos(pi / (n + 1.0)), 1e-9);
    EXPECT_TRUE(near(nodalis::eigenvector_centrality(graphs::path(n, weight)),
                     each(n,
                          [&](double i) {
                              return std::sqrt(2.0 / (n + 1.0)) *
                                     std::sin(pi * (i + 1.0) / (n + 1.0));
                          }),
                     1e-6 / std::min(gap, 1.0)));
}

INSTANTIATE_TEST_SUITE_P(Sizes, Path, testing::Values(2, 3, 5, 32, 150, 1000));

class Cycle : public testing::TestWithParam<int>
{
};

TEST_P(Cycle, TheShorterWayRoundCounts)
{
    const int n = GetParam();
    const Eigen::MatrixXf graph = graphs::cycle(n, weight);
    double sum = 0.0;
    for (int steps = 1; steps < n; ++steps) {
        sum += double{weight} / std::min(steps, n - steps);
    }
    EXPECT_TRUE(near(nodalis::nodal_global_efficiency(graph), all(n, sum / (n - 1.0))));
    EXPECT_TRUE(near(nodalis::eigenvector_centrality(graph), all(n, 1.0 / std::sqrt(n))));
    EXPECT_TRUE(near(nodalis::clustering_coeff(graph), all(n, n == 3 ? double{weight} : 0.0)));
    // All weights tie: the edge that closes the cycle last in the order is left out.
    Eigen::MatrixXf open = graph;
    open(n - 2, n - 1) = open(n - 1, n - 2) = 0.0F;
    EXPECT_EQ(kept_weights(graph), open);
}

INSTANTIATE_TEST_SUITE_P(Sizes, Cycle, testing::Values(3, 4, 5, 8, 51, 128));

TEST(TwoCliques, TheBridgeCarriesAllPathsBetweenThem)
{
    const int n = 6;
    const float bridge = 0.125F;
    const Eigen::MatrixXf graph = graphs::two_cliques(n, bridge);
    // Inside a clique 1; over the bridge 8, plus one step for each end that is not at it.
    const double inside = n - 1.0;
    const double at_bridge = inside + 1.0 / 8.0 + (n - 1.0) / 9.0;
    const double elsewhere = inside + 1.0 / 9.0 + (n - 1.0) / 10.0;
    const Eigen::ArrayXd wanted = each(2 * n, [&](double i) {
        return (i == n - 1.0 || i == n ? at_bridge : elsewhere) / (2.0 * n - 1.0);
    });
    EXPECT_TRUE(near(nodalis::nodal_global_efficiency(graph), wanted));
    EXPECT_TRUE(near(nodalis::global_efficiency(graph), wanted.mean()));

    // An end of the bridge has n neighbours, of which n - 1 form a clique.
    const double share = (n - 1.0) * (n - 2.0) / (n * (n - 1.0));
    const Eigen::ArrayXd local =
        each(2 * n, [&](double i) { return i == n - 1.0 || i == n ? share : 1.0; });
    EXPECT_TRUE(near(nodalis::clustering_coeff(graph), local));
    EXPECT_TRUE(near(nodalis::local_efficiency(graph), local));
    EXPECT_EQ(kept_weights(graph)(n - 1, n), bridge);
}

TEST(DisconnectedGraph, PartsDoNotReachEachOther)
{
    const Eigen::MatrixXf graph =
        graphs::side_by_side(graphs::complete(3, 0.5F), graphs::complete(4, 1.0F));
    const auto part = [](double first, double second) {
        return each(7, [=](double i) { return i < 3.0 ? first : second; });
    };
    EXPECT_TRUE(near(nodalis::nodal_global_efficiency(graph), part(2 * 0.5 / 6.0, 3.0 / 6.0)));
    EXPECT_TRUE(near(nodalis::clustering_coeff(graph), part(0.5, 1.0)));
    EXPECT_TRUE(near(nodalis::local_efficiency(graph), part(0.5, 1.0)));
    EXPECT_TRUE(near(nodalis::eigenvector_centrality(graph), part(0.0, 0.5)));
    EXPECT_EQ(std::get<1>(nodalis::mst::minimum_spanning_tree(graph, false, false)).sum(), 5);
}

TEST(EqualComponents, ShareTheEigenvector)
{
    const Eigen::MatrixXf two =
        graphs::side_by_side(graphs::complete(4, weight), graphs::complete(4, weight));
    EXPECT_TRUE(near(nodalis::eigenvector_centrality(two), all(8, 1.0 / std::sqrt(8.0))));

    // A star of 5 and a complete graph of 3 have the largest eigenvalue 2 both, with the vectors
    // u = (2, 1, 1, 1, 1)/sqrt(8) and v = (1, 1, 1)/sqrt(3). The ones project to (1.u) u, (1.v) v.
    const Eigen::MatrixXf unlike = graphs::side_by_side(graphs::star(5), graphs::complete(3));
    Eigen::VectorXd projection(8);
    projection << 6.0 / 4.0, 3.0 / 4.0, 3.0 / 4.0, 3.0 / 4.0, 3.0 / 4.0, 1.0, 1.0, 1.0;
    EXPECT_TRUE(near(nodalis::eigenvector_centrality(unlike), projection.normalized().array()));
}

TEST(Clique, AmongThousandsOfOtherNodesIsAsEfficientAsAlone)
{
    // Over 2,048 nodes work is shared in larger steps, see the parts of local_efficiency.cpp.
    constexpr int n = 2100;
    const Eigen::MatrixXf graph = graphs::side_by_side(
        graphs::complete(12, 0.5F), graphs::side_by_side(graphs::star(20), graphs::path(n - 32)));
    Eigen::ArrayXd wanted = Eigen::ArrayXd::Zero(n);
    wanted.head(12).setConstant(0.5);
    EXPECT_TRUE(near(nodalis::local_efficiency(graph), wanted));
}

TEST(IsolatedNode, HasZeroEverywhere)
{
    const Eigen::MatrixXf graph =
        graphs::side_by_side(graphs::complete(5, weight), Eigen::MatrixXf::Zero(1, 1));
    EXPECT_EQ(nodalis::degree(graph)[5], 0.0F);
    EXPECT_EQ(nodalis::strength(graph)[5], 0.0F);
    EXPECT_EQ(nodalis::clustering_coeff(graph)[5], 0.0F);
    EXPECT_EQ(nodalis::local_efficiency(graph)[5], 0.0F);
    EXPECT_EQ(nodalis::nodal_global_efficiency(graph)[5], 0.0F);
    EXPECT_EQ(nodalis::eigenvector_centrality(graph)[5], 0.0F);
    EXPECT_TRUE(kept_weights(graph).col(5).isZero(0.0F));
    EXPECT_TRUE(near(nodalis::global_efficiency(graph), double{weight} * 20.0 / 30.0));
}

class WithoutEdges : public testing::TestWithParam<int>
{
};

TEST_P(WithoutEdges, EverythingIsZero)
{
    const int n = GetParam();
    Eigen::MatrixXf graph = Eigen::MatrixXf::Zero(n, n);
    const Eigen::ArrayXd zeros = all(n, 0.0);
    EXPECT_TRUE(near(nodalis::degree(graph), zeros));
    EXPECT_TRUE(near(nodalis::strength(graph), zeros));
    EXPECT_TRUE(near(nodalis::clustering_coeff(graph), zeros));
    EXPECT_TRUE(near(nodalis::local_efficiency(graph), zeros));
    EXPECT_TRUE(near(nodalis::nodal_global_efficiency(graph), zeros));
    EXPECT_TRUE(near(nodalis::eigenvector_centrality(graph), zeros));
    EXPECT_EQ(nodalis::global_efficiency(graph), 0.0F);
    const auto [kept, tree] = nodalis::mst::minimum_spanning_tree(graph, false, true);
    EXPECT_EQ(kept, graph);
    EXPECT_EQ(tree, Eigen::MatrixXi::Zero(n, n));
    Eigen::MatrixXf nothing;
    EXPECT_EQ(nodalis::distances::spectral_euclidean(graph, nothing, 3), 0.0F);
}

INSTANTIATE_TEST_SUITE_P(Sizes, WithoutEdges, testing::Values(0, 1, 2, 3, 20, 130));

TEST(SingleEdge, OnlyCentralityAndEfficiencySeeIt)
{
    const Eigen::MatrixXf graph = graphs::path(2, weight);
    EXPECT_TRUE(near(nodalis::eigenvector_centrality(graph), all(2, std::sqrt(0.5))));
    EXPECT_EQ(nodalis::global_efficiency(graph), weight);
    EXPECT_TRUE(near(nodalis::clustering_coeff(graph), all(2, 0.0)));
    EXPECT_TRUE(near(nodalis::local_efficiency(graph), all(2, 0.0)));
}

} // namespace
