// SPDX-License-Identifier: GPL-3.0-or-later
// Eigenvector centrality where it is hard: shared, close and hidden eigenvalues.

#include <cmath>

#include <gtest/gtest.h>
#include <nodalis/centrality.h>

#include "tests/nodalis/graphs.h"
#include "tests/nodalis/near.h"
#include "tests/nodalis/plain.h"

namespace
{

Eigen::ArrayXd all(Eigen::Index n, double value)
{
    return Eigen::ArrayXd::Constant(n, value);
}

TEST(EigenvectorCentrality, OfPermutedCopiesIsTheSameOnEach)
{
    graphs::Random random(11);
    for (int round = 0; round < 20; ++round) {
        const Eigen::MatrixXf part = graphs::random(40, 0.5, graphs::Weights::uniform, random);
        const Eigen::MatrixXf both = graphs::side_by_side(part, part);
        const auto order = graphs::permutation(80, random);
        const Eigen::ArrayXd one = plain::eigenvector_centrality(part) / std::sqrt(2.0);
        Eigen::ArrayXd wanted(80);
        wanted << one, one;
        EXPECT_TRUE(near(nodalis::eigenvector_centrality(graphs::permuted(both, order)),
                         wanted(order), 1e-5));
    }
}

TEST(EigenvectorCentrality, OfAWeakBridgeIsThatOfTheStrongerSide)
{
    // The relative gap is about 1e-4, the bridge much weaker than that.
    Eigen::MatrixXf graph =
        graphs::side_by_side(graphs::complete(30), graphs::complete(30, 0.9999F));
    graph(29, 30) = graph(30, 29) = 1e-7F;
    EXPECT_TRUE(near(nodalis::eigenvector_centrality(graph), plain::eigenvector_centrality(graph),
                     1e-6 / plain::relative_gap(graph)));
}

TEST(EigenvectorCentrality, OfUnconnectedNearEqualsIsThatOfTheStronger)
{
    // One unit in the last place apart: no method may blend them into one.
    const float weaker = std::nextafter(1.0F, 0.0F);
    const Eigen::MatrixXf graph =
        graphs::side_by_side(graphs::complete(10, weaker), graphs::complete(10));
    Eigen::ArrayXd wanted = all(20, 1.0 / std::sqrt(10.0));
    wanted.head(10).setZero();
    EXPECT_TRUE(near(nodalis::eigenvector_centrality(graph), wanted, 1e-4));
}

TEST(EigenvectorCentrality, IgnoresTheEqualNegativeEndOfABipartiteSpectrum)
{
    Eigen::MatrixXf graph = Eigen::MatrixXf::Zero(12, 12);
    graph.topRightCorner(4, 8).setConstant(0.5F);
    graph.bottomLeftCorner(8, 4).setConstant(0.5F);
    Eigen::ArrayXd wanted = all(12, std::sqrt(0.5 / 8.0));
    wanted.head(4).setConstant(std::sqrt(0.5 / 4.0));
    EXPECT_TRUE(near(nodalis::eigenvector_centrality(graph), wanted));
}

TEST(EigenvectorCentrality, OfAVectorAtRightAnglesToTheOnesIsItsAbsoluteValue)
{
    // Two friends and two friends that oppose each other: the leading vector is (1, 1, -1, -1)/2.
    Eigen::MatrixXf graph = graphs::side_by_side(graphs::complete(2), graphs::complete(2));
    graph.topRightCorner(2, 2).setConstant(-1.0F);
    graph.bottomLeftCorner(2, 2).setConstant(-1.0F);
    EXPECT_TRUE(near(nodalis::eigenvector_centrality(graph), all(4, 0.5)));

    // The same at a size at which iteration would start from the ones and never see it.
    Eigen::MatrixXf large = graphs::side_by_side(graphs::complete(60), graphs::complete(60));
    large.topRightCorner(60, 60).setConstant(-1.0F);
    large.bottomLeftCorner(60, 60).setConstant(-1.0F);
    EXPECT_TRUE(near(nodalis::eigenvector_centrality(large), all(120, 1.0 / std::sqrt(120.0))));
}

TEST(EigenvectorCentrality, OfAGraphThatTakesTheOnesToNothing)
{
    // A ring whose weights are 1 and -1 in turn: each node's add up to 0. With n a multiple of 4
    // and every second pair of nodes turned over it is the ring of ones, of the same eigenvector.
    for (const int n : {4, 8, 100}) {
        Eigen::MatrixXf graph = graphs::cycle(n);
        for (int i = 1; i < n; i += 2) {
            const int next = (i + 1) % n;
            graph(i, next) = graph(next, i) = -1.0F;
        }
        EXPECT_TRUE(near(nodalis::eigenvector_centrality(graph), all(n, 1.0 / std::sqrt(n)))) << n;
    }
}

TEST(EigenvectorCentrality, OfASharedSpaceAtRightAnglesIsTheLengthInIt)
{
    // All weights negative: the largest eigenvalue 1 belongs to every vector of sum zero.
    for (const int n : {3, 8, 90}) {
        EXPECT_TRUE(near(nodalis::eigenvector_centrality(graphs::complete(n, -1.0F)),
                         all(n, 1.0 / std::sqrt(n))));
    }
}

TEST(EigenvectorCentrality, IsTheSameAtEveryScale)
{
    graphs::Random random(13);
    const Eigen::MatrixXf positive = graphs::random(60, 0.5, graphs::Weights::uniform, random);
    const Eigen::MatrixXf mixed = graphs::random(60, 0.5, graphs::Weights::signs, random);
    const Eigen::MatrixXf opposed = graphs::complete(60, -1.0F);
    for (const float factor : {0x1p-120F, 1e-30F, 1e-20F, 1e-10F, 1e10F, 1e20F, 1e38F}) {
        SCOPED_TRACE(factor);
        for (const Eigen::MatrixXf &graph : {positive, mixed}) {
            EXPECT_TRUE(near(nodalis::eigenvector_centrality(factor * graph),
                             plain::eigenvector_centrality(graph),
                             1e-6 / plain::relative_gap(graph)));
        }
        EXPECT_TRUE(near(nodalis::eigenvector_centrality(factor * opposed),
                         all(60, 1.0 / std::sqrt(60.0))));
    }
}

TEST(EigenvectorCentrality, OfSmallGapsIsAsAccurateAsTheyAllow)
{
    graphs::Random random(12);
    for (const float bridge : {1e-1F, 1e-2F, 1e-3F, 1e-4F}) {
        const Eigen::MatrixXf a = graphs::random(50, 0.4, graphs::Weights::uniform, random);
        Eigen::MatrixXf graph = graphs::side_by_side(a, a);
        graph(49, 50) = graph(50, 49) = bridge;
        EXPECT_TRUE(near(nodalis::eigenvector_centrality(graph),
                         plain::eigenvector_centrality(graph), 1e-6 / plain::relative_gap(graph)))
            << bridge;
    }
}

} // namespace
