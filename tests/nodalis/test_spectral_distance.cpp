// SPDX-License-Identifier: GPL-3.0-or-later

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>

#include <gtest/gtest.h>
#include <nodalis/distances.h>

#include "tests/nodalis/graphs.h"
#include "tests/nodalis/near.h"

namespace
{

float distance(Eigen::MatrixXf a, Eigen::MatrixXf b, int size = 0)
{
    return nodalis::distances::spectral_euclidean(a, b, size);
}

Eigen::MatrixXf padded(const Eigen::MatrixXf &graph, Eigen::Index size)
{
    return graphs::side_by_side(graph,
                                Eigen::MatrixXf::Zero(size - graph.rows(), size - graph.rows()));
}

TEST(SpectralDistance, IsAPseudometricForEqualSizes)
{
    graphs::Random random(41);
    for (int round = 0; round < 2000; ++round) {
        const int n = graphs::below(16, random);
        const auto graph = [&] {
            return graphs::random(n, graphs::uniform(random),
                                  static_cast<graphs::Weights>(graphs::below(5, random)), random);
        };
        const Eigen::MatrixXf a = graph();
        const Eigen::MatrixXf b = graph();
        const Eigen::MatrixXf c = graph();
        EXPECT_EQ(distance(a, a), 0.0F);
        EXPECT_GE(distance(a, b), 0.0F);
        EXPECT_EQ(distance(a, b), distance(b, a));
        EXPECT_LE(distance(a, c), (distance(a, b) + distance(b, c)) * (1.0F + 1e-6F));
        // Never larger than the distance of the matrices themselves (Hoffman and Wielandt).
        EXPECT_LE(distance(a, b), (a - b).norm() * (1.0F + 1e-5F));
        EXPECT_TRUE(near(distance(4.0F * a, 4.0F * b), 4.0 * double{distance(a, b)}));
    }
}

TEST(SpectralDistance, IsTheSameByWayOfSpectra)
{
    graphs::Random random(46);
    for (int round = 0; round < 300; ++round) {
        const Eigen::MatrixXf a = graphs::any(12, random);
        const Eigen::MatrixXf b = graphs::any(12, random);
        const int size = graphs::below(30, random);
        const Eigen::VectorXd spectrum = nodalis::distances::spectrum(a);
        ASSERT_EQ(spectrum.size(), a.rows());
        EXPECT_TRUE(std::is_sorted(spectrum.data(), spectrum.data() + spectrum.size()));
        EXPECT_EQ(
            nodalis::distances::between_spectra(spectrum, nodalis::distances::spectrum(b), size),
            distance(a, b, size));
    }
}

TEST(SpectralDistance, TheSpectrumOfACompleteGraphIsKnown)
{
    const Eigen::MatrixXf complete =
        Eigen::MatrixXf::Ones(5, 5) - Eigen::MatrixXf(Eigen::MatrixXf::Identity(5, 5));
    Eigen::VectorXd expected(5);
    expected << -1.0, -1.0, -1.0, -1.0, 4.0;
    EXPECT_LT((nodalis::distances::spectrum(complete) - expected).norm(), 1e-12);
    EXPECT_THROW(nodalis::distances::spectrum(Eigen::MatrixXf::Zero(2, 3)), std::invalid_argument);
}

TEST(SpectralDistance, PadsTheSmallerGraphAndUpToSize)
{
    graphs::Random random(42);
    for (int round = 0; round < 1000; ++round) {
        const Eigen::MatrixXf a = graphs::any(12, random);
        const Eigen::MatrixXf b = graphs::any(12, random);
        const int size = graphs::below(30, random);
        const Eigen::Index common = std::max({a.rows(), b.rows(), Eigen::Index{size}});
        EXPECT_NEAR(distance(a, b, size), distance(padded(a, common), padded(b, common)), 1e-5);
    }
}

TEST(SpectralDistance, DependsOnThePadding)
{
    // Spectra (2, -1, -1) and (1, -1): unpadded, zeros join the middle of the second only.
    const Eigen::MatrixXf triangle = graphs::complete(3);
    const Eigen::MatrixXf edge = graphs::complete(2);
    EXPECT_TRUE(near(distance(triangle, edge), std::sqrt(1.0 + 1.0)));
    // (2, 0, -1, -1) and (1, 0, 0, -1)
    EXPECT_TRUE(near(distance(triangle, edge, 4), std::sqrt(1.0 + 1.0)));
    // (1, 1, -1, -1) against (3, -1, -1, -1), and with a fifth and sixth node
    const Eigen::MatrixXf pairs = graphs::side_by_side(edge, edge);
    const Eigen::MatrixXf four = graphs::complete(4);
    EXPECT_TRUE(near(distance(pairs, four), std::sqrt(4.0 + 4.0)));
    EXPECT_TRUE(near(distance(pairs, four, 5), std::sqrt(4.0 + 1.0 + 1.0)));
}

TEST(SpectralDistance, OfHugeSizesCostsNothingMore)
{
    const Eigen::MatrixXf pairs = graphs::side_by_side(graphs::complete(2), graphs::complete(2));
    EXPECT_EQ(distance(pairs, graphs::complete(4), std::numeric_limits<int>::max()),
              distance(pairs, graphs::complete(4), 8));
}

TEST(SpectralDistance, TakesANegativeSizeForNone)
{
    EXPECT_EQ(distance(graphs::complete(3), graphs::path(4), -7),
              distance(graphs::complete(3), graphs::path(4), 0));
}

TEST(SpectralDistance, OfNothingIsZero)
{
    EXPECT_EQ(distance({}, {}), 0.0F);
    EXPECT_EQ(distance({}, {}, 5), 0.0F);
    EXPECT_FLOAT_EQ(distance({}, graphs::complete(2)), std::sqrt(2.0F));
}

} // namespace
