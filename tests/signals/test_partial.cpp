// SPDX-License-Identifier: GPL-3.0-or-later
#include "signals/partial.h"

#include "signals/correlation.h"
#include "signals/regression.h"
#include "tests/signals/error_text.h"
#include "tests/signals/near.h"
#include "tests/signals/noise.h"

#include <Eigen/Eigenvalues>
#include <gmock/gmock.h>

namespace
{

using namespace signals;
using testing::HasSubstr;

/// Series that share something.
Eigen::MatrixXd mixed(Eigen::Index rows, Eigen::Index nodes, unsigned seed)
{
    Noise noise(seed);
    return noise.white(rows, nodes) + noise.white(rows, 2) * noise.white(2, nodes);
}

TEST(Partial, IsTheCorrelationOfResiduals)
{
    const Eigen::MatrixXd series = mixed(60, 5, 60);
    const Eigen::MatrixXd partial = partial_correlation(series, 59);
    for (const auto &[a, b] : {std::pair(0, 1), std::pair(3, 1), std::pair(4, 2)}) {
        Eigen::MatrixXd others(60, 4);
        others.col(0).setOnes();
        Eigen::Index next = 1;
        for (Eigen::Index node = 0; node < 5; ++node) {
            if (node != a && node != b) {
                others.col(next++) = series.col(node);
            }
        }
        const std::vector<Eigen::Index> pair = {a, b};
        const Eigen::MatrixXd left =
            residuals(series(Eigen::all, pair), pivoted_basis(others, 1e-12));
        EXPECT_NEAR(partial(a, b), pearson(left)(0, 1), 1e-12);
    }
    EXPECT_TRUE(near(partial, partial.transpose(), 0));
    EXPECT_TRUE((partial.diagonal().array() == 1).all());
}

TEST(Partial, OfTwoNodesIsTheirCorrelation)
{
    const Eigen::MatrixXd series = mixed(30, 2, 61);
    EXPECT_TRUE(near(partial_correlation(series, 29), pearson(series), 1e-13));
}

TEST(Partial, NeedsMoreDegreesOfFreedomThanNodes)
{
    const Eigen::MatrixXd series = mixed(60, 8, 62);
    EXPECT_NO_THROW(partial_correlation(series, 8.5));
    EXPECT_THAT(error_text<Error>([&] { partial_correlation(series, 8); }),
                testing::AllOf(HasSubstr("8 nodes with 8 degrees of freedom"),
                               HasSubstr("--shrinkage ledoit-wolf")));
    EXPECT_THAT(error_text<Error>([&] { partial_correlation(series, NAN); }),
                HasSubstr("8 nodes with n/a degrees"));
}

TEST(Partial, NodesWithoutValuesLeaveBeforeTheInversion)
{
    Eigen::MatrixXd series = mixed(60, 6, 63);
    const std::vector<Eigen::Index> good = {0, 2, 3, 5};
    const Eigen::MatrixXd wanted = partial_correlation(series(Eigen::all, good), 50);
    series.col(1).setConstant(4.2);
    series(9, 4) = NAN;
    const Eigen::MatrixXd found = partial_correlation(series, 5) /* above 4, below 6 */;
    EXPECT_TRUE(near(found(good, good), wanted, 1e-13));
    for (const int node : {1, 4}) {
        EXPECT_TRUE(found.row(node).array().isNaN().all());
        EXPECT_TRUE(found.col(node).array().isNaN().all());
    }
    const ShrunkPartial shrunk = shrunk_partial_correlation(series);
    EXPECT_TRUE(near(shrunk.partial(good, good),
                     shrunk_partial_correlation(series(Eigen::all, good)).partial, 1e-13));
    EXPECT_TRUE(shrunk.partial.col(4).array().isNaN().all());
}

TEST(Partial, EqualSeriesCannotBeInverted)
{
    Eigen::MatrixXd series = mixed(60, 4, 64);
    series.col(3) = 2 * series.col(0);
    EXPECT_THAT(error_text<Error>([&] { partial_correlation(series, 50); }),
                HasSubstr("covariance of 4 nodes cannot be inverted"));
    EXPECT_NO_THROW(shrunk_partial_correlation(series));
    // As good as equal.
    series.col(3) = series.col(0) + 1e-9 * series.col(1);
    EXPECT_THAT(error_text<Error>([&] { partial_correlation(series, 50); }),
                HasSubstr("covariance of 4 nodes cannot be inverted"));
    // Hilbert's matrix has an inverse, and no digit of what is computed of it is right.
    const Eigen::MatrixXd hilbert = Eigen::MatrixXd::NullaryExpr(
        12, 12, [](Eigen::Index i, Eigen::Index j) { return 1.0 / double(i + j + 1); });
    EXPECT_THAT(error_text<Error>([&] { partial_of(hilbert); }),
                HasSubstr("covariance of 12 nodes cannot be inverted"));
    // Three that cannot all be at odds with each other.
    Eigen::Matrix3d odds = Eigen::Matrix3d::Constant(-0.9);
    odds.diagonal().setOnes();
    EXPECT_THAT(error_text<Error>([&] { partial_of(odds); }),
                HasSubstr("covariance of 3 nodes cannot be inverted"));
    EXPECT_EQ(partial_correlation(Eigen::MatrixXd(60, 0), 50).size(), 0);
}

TEST(Partial, StandardError)
{
    EXPECT_EQ(partial_standard_error(125, 100), 0.2);
    EXPECT_TRUE(std::isnan(partial_standard_error(100, 100)));
    EXPECT_TRUE(std::isnan(partial_standard_error(NAN, 100)));
    // Of two nodes: that of a correlation.
    EXPECT_EQ(partial_standard_error(27, 2), 0.2);
}

TEST(LedoitWolf, BySums)
{
    const Eigen::MatrixXd series = mixed(12, 3, 65);
    const double rows = 12;
    const double nodes = 3;
    const Eigen::MatrixXd x = series.rowwise() - series.colwise().mean();
    const Eigen::MatrixXd s = x.transpose() * x / rows;
    const double mu = s.trace() / nodes;
    const double d2 = (s - mu * Eigen::MatrixXd::Identity(3, 3)).squaredNorm() / nodes;
    double b2 = 0;
    for (int t = 0; t < 12; ++t) {
        b2 += (x.row(t).transpose() * x.row(t) - s).squaredNorm() / nodes / rows / rows;
    }
    const double shrinkage = std::min(b2, d2) / d2;
    const Shrunk found = ledoit_wolf(series);
    EXPECT_NEAR(found.shrinkage, shrinkage, 1e-13);
    EXPECT_GT(found.shrinkage, 0.01);
    EXPECT_LT(found.shrinkage, 0.99);
    EXPECT_TRUE(near(found.covariance,
                     (1 - shrinkage) * s + shrinkage * mu * Eigen::MatrixXd::Identity(3, 3),
                     1e-12));
}

TEST(LedoitWolf, MoreNodesThanRows)
{
    const Shrunk found = ledoit_wolf(mixed(10, 40, 66));
    EXPECT_GT(found.shrinkage, 0);
    const Eigen::SelfAdjointEigenSolver<Eigen::MatrixXd> solver(found.covariance);
    EXPECT_GT(solver.eigenvalues().minCoeff(), 0);
    EXPECT_TRUE(shrunk_partial_correlation(mixed(10, 40, 66)).partial.allFinite());
}

TEST(LedoitWolf, EndsOfTheRange)
{
    // Nothing but noise in many nodes: nearly all goes. Many rows of clear structure: nearly none.
    EXPECT_GT(ledoit_wolf(Noise(67).white(20, 60)).shrinkage, 0.8);
    EXPECT_LT(ledoit_wolf(mixed(20000, 5, 68)).shrinkage, 0.01);
    // One node, or equal variances without covariance: nothing to shrink to.
    EXPECT_EQ(ledoit_wolf(Noise(69).white(9, 1)).shrinkage, 0);
    EXPECT_EQ(ledoit_wolf(Eigen::MatrixXd::Zero(9, 3)).shrinkage, 0);
    EXPECT_EQ(ledoit_wolf(Eigen::MatrixXd(9, 0)).covariance.size(), 0);
    EXPECT_EQ(ledoit_wolf(Eigen::MatrixXd::Ones(1, 2)).covariance, Eigen::MatrixXd::Zero(2, 2));
}

TEST(LedoitWolf, Input)
{
    EXPECT_THAT(error_text<Error>([] { ledoit_wolf(Eigen::MatrixXd(0, 2)); }),
                HasSubstr("0 rows: expected 1 or more"));
    Eigen::MatrixXd series = Eigen::MatrixXd::Zero(5, 2);
    series(3, 1) = NAN;
    EXPECT_THAT(error_text<Error>([&] { ledoit_wolf(series); }),
                HasSubstr("series 1, volume 3 (both from 0) is n/a"));
}

TEST(UnitVariance, ByRows)
{
    Eigen::MatrixXd series(4, 2);
    series << 1, 7, 2, 7, 3, 7, 4, 7;
    const Eigen::MatrixXd found = unit_variance(series);
    EXPECT_NEAR(found(3, 0), 1.5 / std::sqrt(1.25), 1e-15);
    EXPECT_EQ(found.col(1), Eigen::VectorXd::Zero(4));
}

} // namespace
