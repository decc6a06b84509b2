// SPDX-License-Identifier: GPL-3.0-or-later
// What the measures make of raw matrices, and what they refuse.

#include <cmath>
#include <cstdio>
#include <functional>
#include <limits>
#include <stdexcept>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nodalis/nodalis.h>

#include "tests/nodalis/graphs.h"

namespace
{

constexpr float nan = std::numeric_limits<float>::quiet_NaN();
constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float largest = std::numeric_limits<float>::max();
constexpr float smallest = std::numeric_limits<float>::denorm_min();

/// All results of all measures, for comparing bit by bit.
std::vector<float> everything(Eigen::MatrixXf graph)
{
    std::vector<float> all;
    const auto add = [&](const Eigen::ArrayXf &values) {
        all.insert(all.end(), values.begin(), values.end());
    };
    add(nodalis::degree(graph));
    add(nodalis::strength(graph));
    add(nodalis::clustering_coeff(graph));
    add(nodalis::local_efficiency(graph));
    add(nodalis::nodal_global_efficiency(graph));
    add(nodalis::eigenvector_centrality(graph));
    all.push_back(nodalis::global_efficiency(graph));
    Eigen::MatrixXf nothing;
    all.push_back(nodalis::distances::spectral_euclidean(graph, nothing, 0));
    for (const bool lengths : {false, true}) {
        const Eigen::MatrixXf kept =
            std::get<0>(nodalis::mst::minimum_spanning_tree(graph, lengths, true));
        add(kept.reshaped());
    }
    return all;
}

/// A matrix with every kind of entry that needs treatment.
Eigen::MatrixXf raw(int n, graphs::Random &random)
{
    Eigen::MatrixXf matrix(n, n);
    for (float &entry : matrix.reshaped()) {
        const int kind = graphs::below(12, random);
        entry = kind == 0   ? nan
                : kind == 1 ? infinity
                : kind == 2 ? -infinity
                : kind == 3 ? 0.0F
                            : static_cast<float>(2.0 * graphs::uniform(random) - 0.7);
    }
    return matrix;
}

TEST(Treatment, AppliesItsRules)
{
    Eigen::MatrixXf matrix(3, 3);
    matrix << 7.0F, 0.5F, nan, //
        0.25F, nan, -0.5F,     //
        0.75F, -infinity, -2.0F;
    nodalis::treatment(matrix);
    Eigen::MatrixXf wanted(3, 3);
    wanted << 0.0F, 0.375F, 0.375F, //
        0.375F, 0.0F, -0.25F,       //
        0.375F, -0.25F, 0.0F;
    EXPECT_EQ(matrix, wanted);
}

TEST(Treatment, KeepsMatricesOfNoneAndOneNode)
{
    Eigen::MatrixXf none(0, 0);
    nodalis::treatment(none);
    EXPECT_EQ(none.rows(), 0);
    Eigen::MatrixXf one = Eigen::MatrixXf::Constant(1, 1, 5.0F);
    nodalis::treatment(one);
    EXPECT_EQ(one, Eigen::MatrixXf::Zero(1, 1));
}

TEST(Treatment, TwiceChangesNothing)
{
    graphs::Random random(1);
    for (int round = 0; round < 200; ++round) {
        Eigen::MatrixXf once = raw(graphs::below(80, random), random);
        nodalis::treatment(once);
        Eigen::MatrixXf twice = once;
        nodalis::treatment(twice);
        EXPECT_EQ(once, twice);
        EXPECT_EQ(once, once.transpose());
        EXPECT_TRUE(once.allFinite());
        EXPECT_TRUE(once.diagonal().isZero(0.0F));
    }
}

TEST(Treatment, RoundsTheMeanOnceAndCannotOverflow)
{
    Eigen::MatrixXf matrix(2, 2);
    matrix << 0.0F, largest, largest, 0.0F;
    nodalis::treatment(matrix);
    EXPECT_EQ(matrix(0, 1), largest);
    matrix << 0.0F, 0.1F, 0.3F, 0.0F;
    nodalis::treatment(matrix);
    EXPECT_EQ(matrix(0, 1), static_cast<float>((double{0.1F} + double{0.3F}) / 2.0));
}

TEST(RawMatrices, AreMeasuredAsTheirTreatedSelves)
{
    graphs::Random random(2);
    for (int round = 0; round < 300; ++round) {
        const Eigen::MatrixXf matrix = raw(graphs::below(25, random), random);
        Eigen::MatrixXf treated = matrix;
        nodalis::treatment(treated);
        EXPECT_EQ(everything(matrix), everything(treated));
    }
}

TEST(RawMatrices, OfNothingButNanHaveNoEdges)
{
    for (const float entry : {nan, infinity, -infinity}) {
        const std::vector<float> values = everything(Eigen::MatrixXf::Constant(9, 9, entry));
        EXPECT_THAT(values, testing::Each(0.0F)) << entry;
    }
}

TEST(ExtremeWeights, StayFinite)
{
    for (const float weight : {smallest, 1e-38F, 1e30F}) {
        SCOPED_TRACE(weight);
        const Eigen::MatrixXf graph = graphs::complete(5, weight);
        EXPECT_FLOAT_EQ(nodalis::global_efficiency(graph), weight);
        EXPECT_FLOAT_EQ(nodalis::local_efficiency(graph)[4], weight);
        EXPECT_FLOAT_EQ(nodalis::clustering_coeff(graph)[4], weight);
        EXPECT_FLOAT_EQ(nodalis::eigenvector_centrality(graph)[4], std::sqrt(0.2F));
        EXPECT_EQ(std::get<1>(nodalis::mst::minimum_spanning_tree(graph, false, true)).sum(), 8);
    }
    const Eigen::MatrixXf graph = graphs::complete(5, largest);
    EXPECT_EQ(nodalis::global_efficiency(graph), largest);
    EXPECT_EQ(nodalis::strength(graph)[0], infinity);
}

TEST(MixedExtremes, TheStrongestPathWins)
{
    // 0 - 1 - 2 are joined by huge weights, 2 - 3 by the smallest there is.
    Eigen::MatrixXf graph = graphs::path(4, largest);
    graph(2, 3) = graph(3, 2) = smallest;
    const Eigen::ArrayXf values = nodalis::nodal_global_efficiency(graph);
    EXPECT_FLOAT_EQ(values[1], largest / 3.0F * 2.0F);
    EXPECT_FLOAT_EQ(values[3], smallest);
}

TEST(OneSidedWeights, ThatCancelAreNoConnection)
{
    Eigen::MatrixXf matrix = Eigen::MatrixXf::Zero(2, 2);
    matrix(0, 1) = 0.5F;
    matrix(1, 0) = -0.5F;
    EXPECT_THAT(everything(matrix), testing::Each(0.0F));
}

TEST(Arguments, StayAsTheyWere)
{
    graphs::Random random(3);
    const Eigen::MatrixXf matrix = graphs::random(6, 0.8, graphs::Weights::signs, random);
    Eigen::MatrixXf a = matrix;
    Eigen::MatrixXf b = 2.0F * matrix;
    a(1, 1) = 4.0F;
    const Eigen::MatrixXf copy = a;
    nodalis::distances::spectral_euclidean(a, b, 9);
    EXPECT_EQ(a, copy);
    EXPECT_EQ(b, 2.0F * matrix);
}

struct Refusal {
    std::string function;
    std::function<void(Eigen::MatrixXf &)> call;
};

class NotSquare : public testing::TestWithParam<Refusal>
{
};

TEST_P(NotSquare, IsRefusedWithBothNumbers)
{
    for (const auto &[rows, columns] : {std::pair(3, 4), std::pair(4, 3), std::pair(0, 2)}) {
        Eigen::MatrixXf matrix = Eigen::MatrixXf::Ones(rows, columns);
        const Eigen::MatrixXf before = matrix;
        try {
            GetParam().call(matrix);
            ADD_FAILURE() << "no exception";
        } catch (const std::invalid_argument &error) {
            EXPECT_EQ(error.what(), "nodalis::" + GetParam().function +
                                        ": the matrix has to be square, this one has " +
                                        std::to_string(rows) + " rows and " +
                                        std::to_string(columns) + " columns");
        }
        EXPECT_EQ(matrix, before);
    }
}

Eigen::MatrixXf empty;

INSTANTIATE_TEST_SUITE_P(
    Functions, NotSquare,
    testing::Values(
        Refusal{"treatment", [](auto &m) { nodalis::treatment(m); }},
        Refusal{"degree", [](auto &m) { nodalis::degree(m); }},
        Refusal{"strength", [](auto &m) { nodalis::strength(m); }},
        Refusal{"clustering_coeff", [](auto &m) { nodalis::clustering_coeff(m); }},
        Refusal{"local_efficiency", [](auto &m) { nodalis::local_efficiency(m); }},
        Refusal{"local_efficiency_relaxations",
                [](auto &m) { nodalis::local_efficiency_relaxations(m); }},
        Refusal{"global_efficiency", [](auto &m) { nodalis::global_efficiency(m); }},
        Refusal{"nodal_global_efficiency", [](auto &m) { nodalis::nodal_global_efficiency(m); }},
        Refusal{"eigenvector_centrality", [](auto &m) { nodalis::eigenvector_centrality(m); }},
        Refusal{"mst::minimum_spanning_tree",
                [](auto &m) { nodalis::mst::minimum_spanning_tree(m, false, true); }},
        Refusal{"distances::spectral_euclidean",
                [](auto &m) { nodalis::distances::spectral_euclidean(m, empty, 0); }},
        Refusal{"distances::spectral_euclidean",
                [](auto &m) { nodalis::distances::spectral_euclidean(empty, m, 0); }}));

TEST(Version, IsThreeNumbers)
{
    const std::string version = nodalis::version();
    int numbers[3];
    int length = 0;
    std::sscanf(version.c_str(), "%d.%d.%d%n", &numbers[0], &numbers[1], &numbers[2], &length);
    EXPECT_EQ(std::size_t(length), version.size()) << version;
}

} // namespace
