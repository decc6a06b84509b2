// SPDX-License-Identifier: GPL-3.0-or-later
// Measures on several threads, with progress, and ended before they are done.

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nodalis/nodalis.h>

#include "tests/nodalis/graphs.h"

namespace
{

using Measure = Eigen::ArrayXf (*)(const Eigen::MatrixXf &, const nodalis::Effort &);

Eigen::ArrayXf global_efficiency(const Eigen::MatrixXf &graph, const nodalis::Effort &effort)
{
    return Eigen::ArrayXf::Constant(1, nodalis::global_efficiency(graph, effort));
}

class WithEffort : public testing::TestWithParam<Measure>
{
};

TEST_P(WithEffort, IsTheSameOnAnyNumberOfThreads)
{
    graphs::Random random(71);
    for (const double density : {0.0, 0.05, 0.3, 0.9, 1.0}) {
        const Eigen::MatrixXf graph = graphs::random(130, density, graphs::Weights{}, random);
        const Eigen::ArrayXf once = GetParam()(graph, {});
        for (const int threads : {0, 2, 3, 200}) {
            EXPECT_TRUE((GetParam()(graph, {threads, {}}) == once).all())
                << density << ' ' << threads;
        }
    }
}

TEST_P(WithEffort, TellsAscendingSharesUpToOne)
{
    graphs::Random random(72);
    for (const double density : {0.2, 1.0}) {
        const Eigen::MatrixXf graph = graphs::random(150, density, graphs::Weights{}, random);
        for (const int threads : {1, 2}) {
            std::vector<double> shares;
            GetParam()(graph, {threads, [&](double share) {
                                   shares.push_back(share);
                                   return true;
                               }});
            ASSERT_GE(shares.size(), 3U);
            EXPECT_GE(shares.front(), 0.0);
            EXPECT_TRUE(std::is_sorted(shares.begin(), shares.end()));
            EXPECT_NEAR(shares.back(), 1.0, 1e-9);
        }
    }
}

TEST_P(WithEffort, EndsWhenItsProgressSaysSo)
{
    graphs::Random random(73);
    const Eigen::MatrixXf graph = graphs::random(150, 0.5, graphs::Weights{}, random);
    for (const int threads : {1, 2}) {
        int told = 0;
        std::string text = "not ended";
        try {
            GetParam()(graph, {threads, [&](double) { return ++told < 2; }});
        } catch (const nodalis::Ended &ended) {
            text = ended.what();
        }
        EXPECT_EQ(text, "the work was ended");
        // Whoever was at work on another thread tells once more at most.
        EXPECT_LE(told, 1 + threads);
    }
}

std::string name_of(const testing::TestParamInfo<Measure> &tested)
{
    constexpr const char *names[] = {"local", "nodal", "global"};
    return names[tested.index];
}

INSTANTIATE_TEST_SUITE_P(Measures, WithEffort,
                         testing::Values(Measure{nodalis::local_efficiency},
                                         Measure{nodalis::nodal_global_efficiency},
                                         Measure{global_efficiency}),
                         name_of);

TEST(LocalEfficiencyRelaxations, AreFewWhereNeighbourhoodsAreSharedAndThoseOfEachWhereTheyAreNot)
{
    EXPECT_EQ(nodalis::local_efficiency_relaxations(Eigen::MatrixXf::Zero(20, 20)), 0.0);
    EXPECT_EQ(nodalis::local_efficiency_relaxations({}), 0.0);

    const double hundred = nodalis::local_efficiency_relaxations(graphs::star(101));
    EXPECT_GT(hundred, 1e6);
    EXPECT_LT(hundred, 1.2e6);

    const double n = 400.0;
    const double shared = nodalis::local_efficiency_relaxations(graphs::complete(400));
    EXPECT_GT(shared, n * n * n);
    EXPECT_LT(shared, 3.0 * n * n * n * std::log2(n)); // with the copies

    graphs::Random random(72);
    const Eigen::MatrixXf half = graphs::random(400, 0.5, graphs::Weights{}, random);
    const double of_each = std::pow(n / 2.0, 3) * n;
    const double apart = nodalis::local_efficiency_relaxations(half);
    EXPECT_GT(apart, 0.5 * of_each);
    EXPECT_LT(apart, 1.2 * of_each);
    EXPECT_GT(apart, shared);
}

} // namespace
