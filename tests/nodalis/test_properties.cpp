// SPDX-License-Identifier: GPL-3.0-or-later
// What holds for every graph, tried on thousands of random ones.

#include <algorithm>
#include <cmath>

#include <gtest/gtest.h>
#include <nodalis/nodalis.h>

#include "tests/nodalis/graphs.h"
#include "tests/nodalis/near.h"
#include "tests/nodalis/plain.h"

namespace
{

using graphs::permuted;

/// Runs a check on many random graphs and stops at the first one that fails.
template <typename Check>
void for_graphs(int count, int largest, Check check)
{
    graphs::Random random(20210614);
    for (int round = 0; round < count && !testing::Test::HasFailure(); ++round) {
        const Eigen::MatrixXf graph = graphs::any(largest, random);
        SCOPED_TRACE("round " + std::to_string(round) + ", n = " + std::to_string(graph.rows()));
        check(graph, random);
    }
}

double tolerance_of_eigenvector(const Eigen::MatrixXf &graph)
{
    return 1e-6 / std::min(plain::relative_gap(graph), 1.0);
}

TEST(AnyGraph, IsMeasuredAsTheFormulasSay)
{
    for_graphs(3000, 24, [](const Eigen::MatrixXf &graph, graphs::Random &) {
        const Eigen::ArrayXd nodal = plain::nodal_global_efficiency(graph);
        EXPECT_TRUE(near(nodalis::strength(graph), plain::strength(graph)));
        EXPECT_TRUE(near(nodalis::clustering_coeff(graph), plain::clustering_coeff(graph)));
        EXPECT_TRUE(near(nodalis::local_efficiency(graph), plain::local_efficiency(graph)));
        EXPECT_TRUE(near(nodalis::nodal_global_efficiency(graph), nodal));
        EXPECT_TRUE(near(nodalis::global_efficiency(graph), nodal.size() > 0 ? nodal.mean() : 0.0));
        EXPECT_TRUE(near(nodalis::eigenvector_centrality(graph),
                         plain::eigenvector_centrality(graph), tolerance_of_eigenvector(graph)));
    });
}

/// Sizes and densities at which other methods or block sizes come into play.
class LargerGraph : public testing::TestWithParam<std::tuple<int, double, graphs::Weights>>
{
};

TEST_P(LargerGraph, IsMeasuredAsTheFormulasSay)
{
    const auto [n, density, weights] = GetParam();
    graphs::Random random(7);
    const Eigen::MatrixXf graph = graphs::random(n, density, weights, random);
    const Eigen::ArrayXd nodal = plain::nodal_global_efficiency(graph);
    EXPECT_TRUE(near(nodalis::clustering_coeff(graph), plain::clustering_coeff(graph)));
    EXPECT_TRUE(near(nodalis::nodal_global_efficiency(graph), nodal));
    EXPECT_TRUE(near(nodalis::global_efficiency(graph), nodal.mean()));
    EXPECT_TRUE(near(nodalis::local_efficiency(graph), plain::local_efficiency(graph)));
    EXPECT_TRUE(near(nodalis::eigenvector_centrality(graph), plain::eigenvector_centrality(graph),
                     tolerance_of_eigenvector(graph)));
}

INSTANTIATE_TEST_SUITE_P(Shapes, LargerGraph,
                         testing::Combine(testing::Values(31, 64, 95, 130),
                                          testing::Values(0.02, 0.1, 0.3, 0.6, 0.9, 0.99, 1.0),
                                          testing::Values(graphs::Weights::uniform,
                                                          graphs::Weights::decades,
                                                          graphs::Weights::tied)));

TEST(AnyGraph, OnlyChangesItsOrderUnderPermutation)
{
    for_graphs(2000, 24, [](const Eigen::MatrixXf &graph, graphs::Random &random) {
        const auto order = graphs::permutation(static_cast<int>(graph.rows()), random);
        const Eigen::MatrixXf other = permuted(graph, order);
        const auto expect_same = [&](Eigen::ArrayXf (*measure)(const Eigen::MatrixXf &),
                                     double tolerance) {
            EXPECT_TRUE(
                near(measure(other), permuted(measure(graph), order).cast<double>(), tolerance));
        };
        expect_same(nodalis::degree, 0.0);
        expect_same(nodalis::strength, 1e-6);
        expect_same(nodalis::clustering_coeff, 1e-6);
        expect_same(nodalis::local_efficiency, 1e-6);
        expect_same(nodalis::nodal_global_efficiency, 1e-6);
        expect_same(nodalis::eigenvector_centrality, tolerance_of_eigenvector(graph));
        EXPECT_TRUE(
            near(nodalis::global_efficiency(other), double{nodalis::global_efficiency(graph)}));
        Eigen::MatrixXf a = graph;
        Eigen::MatrixXf b = other;
        EXPECT_NEAR(nodalis::distances::spectral_euclidean(a, b, 0), 0.0,
                    1e-6 * (1.0 + double{graph.norm()}));
    });
}

TEST(AnyGraph, ScalesAsTheDefinitionsSay)
{
    for_graphs(2000, 24, [](const Eigen::MatrixXf &graph, graphs::Random &random) {
        // A power of two is exact; any other factor rounds each weight first.
        const int exponent = graphs::below(21, random) - 10;
        const double factor = std::ldexp(1.0, exponent);
        const Eigen::MatrixXf scaled = static_cast<float>(factor) * graph;
        const auto expect_times = [&](Eigen::ArrayXf (*measure)(const Eigen::MatrixXf &), double by,
                                      double tolerance) {
            EXPECT_TRUE(near(measure(scaled), by * measure(graph).cast<double>(), tolerance));
        };
        expect_times(nodalis::degree, 1.0, 0.0);
        expect_times(nodalis::strength, factor, 1e-6);
        expect_times(nodalis::clustering_coeff, factor, 1e-6);
        expect_times(nodalis::local_efficiency, factor, 1e-6);
        expect_times(nodalis::nodal_global_efficiency, factor, 1e-6);
        expect_times(nodalis::eigenvector_centrality, 1.0, tolerance_of_eigenvector(graph));
        EXPECT_TRUE(near(nodalis::global_efficiency(scaled),
                         factor * double{nodalis::global_efficiency(graph)}));
        EXPECT_EQ(std::get<1>(nodalis::mst::minimum_spanning_tree(scaled, false, true)),
                  std::get<1>(nodalis::mst::minimum_spanning_tree(graph, false, true)));
    });
}

/// Weights as small and as large as single precision knows them.
TEST(AnyGraph, ScalesAtEveryMagnitude)
{
    graphs::Random random(9);
    for (int exponent = -147; exponent <= 120 && !testing::Test::HasFailure(); exponent += 3) {
        SCOPED_TRACE("2 to the " + std::to_string(exponent));
        // Quarters to wholes, which such a factor leaves exact.
        const Eigen::MatrixXf graph = graphs::random(24, 0.5, graphs::Weights::tied, random);
        Eigen::MatrixXf other = graphs::random(12, 0.9, graphs::Weights::tied, random);
        const double factor = std::ldexp(1.0, exponent);
        Eigen::MatrixXf scaled = (factor * graph.cast<double>()).cast<float>();
        Eigen::MatrixXf other_scaled = (factor * other.cast<double>()).cast<float>();
        const double rounding = std::ldexp(1.0, -150) / factor;
        const auto expect_times_factor = [&](const Eigen::ArrayXf &values,
                                             const Eigen::ArrayXd &wanted) {
            const Eigen::ArrayXd error = (values.cast<double>() / factor - wanted).abs();
            EXPECT_LE(error.maxCoeff(), 1e-6 * wanted.maxCoeff() + rounding);
        };
        expect_times_factor(nodalis::strength(scaled), plain::strength(graph));
        expect_times_factor(nodalis::clustering_coeff(scaled), plain::clustering_coeff(graph));
        expect_times_factor(nodalis::local_efficiency(scaled), plain::local_efficiency(graph));
        const Eigen::ArrayXd nodal = plain::nodal_global_efficiency(graph);
        expect_times_factor(nodalis::nodal_global_efficiency(scaled), nodal);
        expect_times_factor(Eigen::ArrayXf::Constant(1, nodalis::global_efficiency(scaled)),
                            Eigen::ArrayXd::Constant(1, nodal.mean()));
        Eigen::MatrixXf same = graph;
        expect_times_factor(
            Eigen::ArrayXf::Constant(
                1, nodalis::distances::spectral_euclidean(scaled, other_scaled, 30)),
            Eigen::ArrayXd::Constant(1, nodalis::distances::spectral_euclidean(same, other, 30)));
        EXPECT_TRUE(near(nodalis::degree(scaled), nodalis::degree(graph).cast<double>(), 0.0));
        EXPECT_TRUE(near(nodalis::eigenvector_centrality(scaled),
                         plain::eigenvector_centrality(graph), tolerance_of_eigenvector(graph)));
        for (const bool lengths : {false, true}) {
            EXPECT_EQ(std::get<1>(nodalis::mst::minimum_spanning_tree(scaled, lengths, true)),
                      std::get<1>(nodalis::mst::minimum_spanning_tree(graph, lengths, true)));
        }
    }
}

TEST(AnyGraph, MayHaveWeightsOfEveryMagnitudeAtOnce)
{
    graphs::Random random(10);
    for (int round = 0; round < 200 && !testing::Test::HasFailure(); ++round) {
        SCOPED_TRACE(round);
        Eigen::MatrixXf graph = graphs::random(24, 0.6, graphs::Weights::uniform, random);
        // 1e-44 to 1e36: the sum over a node is still a float.
        graph = graph.unaryExpr([](float w) {
            return w == 0.0F ? 0.0F : static_cast<float>(std::pow(10.0, 80.0 * double{w} - 44.0));
        });
        EXPECT_TRUE(near(nodalis::strength(graph), plain::strength(graph)));
        EXPECT_TRUE(near(nodalis::clustering_coeff(graph), plain::clustering_coeff(graph)));
        EXPECT_TRUE(near(nodalis::local_efficiency(graph), plain::local_efficiency(graph)));
        EXPECT_TRUE(
            near(nodalis::nodal_global_efficiency(graph), plain::nodal_global_efficiency(graph)));
        EXPECT_TRUE(near(nodalis::eigenvector_centrality(graph),
                         plain::eigenvector_centrality(graph), tolerance_of_eigenvector(graph)));
    }
}

TEST(AnyGraph, KeepsWithinItsBounds)
{
    for_graphs(3000, 24, [](const Eigen::MatrixXf &graph, graphs::Random &) {
        const float n = static_cast<float>(graph.rows());
        const float heaviest = graph.size() > 0 ? graph.maxCoeff() : 0.0F;
        const float above = heaviest * (1.0F + 1e-6F);
        const auto within = [](const Eigen::ArrayXf &values, float most) {
            return (values >= 0.0F && values <= most).all();
        };
        EXPECT_TRUE(within(nodalis::degree(graph), std::max(n - 1.0F, 0.0F)));
        EXPECT_TRUE(within(nodalis::clustering_coeff(graph), above));
        EXPECT_TRUE(within(nodalis::nodal_global_efficiency(graph), above));
        EXPECT_TRUE(within(nodalis::eigenvector_centrality(graph), 1.0F + 1e-6F));
        const float global = nodalis::global_efficiency(graph);
        EXPECT_TRUE(global >= 0.0F && global <= above);
        // Paths other than the direct one only shorten the way.
        EXPECT_TRUE(
            (nodalis::local_efficiency(graph) >= nodalis::clustering_coeff(graph) * (1.0F - 1e-6F))
                .all());
        const double norm = nodalis::eigenvector_centrality(graph).matrix().norm();
        EXPECT_NEAR(norm, graph.size() == 0 || graph.isZero(0.0F) ? 0.0 : 1.0, 1e-5);
    });
}

TEST(AnyGraph, GainsEfficiencyWithAnotherConnection)
{
    for_graphs(2000, 20, [](const Eigen::MatrixXf &graph, graphs::Random &random) {
        const int n = static_cast<int>(graph.rows());
        if (n < 2) {
            return;
        }
        Eigen::MatrixXf more = graph;
        const int i = graphs::below(n - 1, random);
        more(i, n - 1) = more(n - 1, i) = graph.maxCoeff() + 0.5F;
        EXPECT_GT(nodalis::global_efficiency(more), nodalis::global_efficiency(graph));
    });
}

TEST(NodalEfficiency, HasTheGlobalOneAsItsMean)
{
    for_graphs(2000, 40, [](const Eigen::MatrixXf &graph, graphs::Random &) {
        const Eigen::ArrayXd nodal = nodalis::nodal_global_efficiency(graph).cast<double>();
        EXPECT_TRUE(near(nodalis::global_efficiency(graph), nodal.size() > 0 ? nodal.mean() : 0.0));
    });
}

TEST(UnweightedGraphs, HaveBinaryMeasures)
{
    graphs::Random random(5);
    for (int round = 0; round < 500; ++round) {
        const Eigen::MatrixXf graph = graphs::random(
            graphs::below(30, random), graphs::uniform(random), graphs::Weights::one, random);
        EXPECT_TRUE((nodalis::strength(graph) == nodalis::degree(graph)).all());
        EXPECT_TRUE((nodalis::local_efficiency(graph) <= 1.0F + 1e-6F).all());
        // Whole numbers of edges on every path: what a node reaches is a sum of 1/1, 1/2, ...
        EXPECT_TRUE((nodalis::nodal_global_efficiency(graph) <= 1.0F).all());
    }
}

TEST(SignedGraphs, AreMeasuredByTheirPositivePart)
{
    graphs::Random random(6);
    for (int round = 0; round < 500; ++round) {
        const Eigen::MatrixXf graph = graphs::random(
            graphs::below(30, random), graphs::uniform(random), graphs::Weights::signs, random);
        const Eigen::MatrixXf positive = graph.cwiseMax(0.0F);
        const auto same = [&](Eigen::ArrayXf (*measure)(const Eigen::MatrixXf &)) {
            return (measure(graph) == measure(positive)).all();
        };
        EXPECT_TRUE(same(nodalis::clustering_coeff));
        EXPECT_TRUE(same(nodalis::local_efficiency));
        EXPECT_TRUE(same(nodalis::nodal_global_efficiency));
        EXPECT_EQ(nodalis::global_efficiency(graph), nodalis::global_efficiency(positive));
        EXPECT_EQ(std::get<0>(nodalis::mst::minimum_spanning_tree(graph, false, true)),
                  std::get<0>(nodalis::mst::minimum_spanning_tree(positive, false, true)));
        EXPECT_TRUE(
            (nodalis::degree(graph) == (graph.array() != 0.0F).cast<float>().rowwise().sum())
                .all());
    }
}

TEST(SignedGraphs, HaveTheEigenvectorOfTheLargestEigenvalue)
{
    graphs::Random random(8);
    for (int round = 0; round < 500 && !testing::Test::HasFailure(); ++round) {
        const Eigen::MatrixXf graph = graphs::random(
            graphs::below(60, random), graphs::uniform(random), graphs::Weights::signs, random);
        SCOPED_TRACE(round);
        EXPECT_TRUE(near(nodalis::eigenvector_centrality(graph),
                         plain::eigenvector_centrality(graph), tolerance_of_eigenvector(graph)));
    }
}

} // namespace
