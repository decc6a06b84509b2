// SPDX-License-Identifier: GPL-3.0-or-later
#include "signals/regression.h"
#include "tests/signals/error_text.h"
#include "tests/signals/near.h"
#include "tests/signals/noise.h"

#include <Eigen/Dense>
#include <gmock/gmock.h>

namespace
{

using namespace signals;
using testing::ElementsAre;
using testing::HasSubstr;

TEST(Regression, ResidualsAreThoseOfLeastSquares)
{
    Noise noise(7);
    const Eigen::MatrixXd design = noise.white(50, 6);
    const Eigen::MatrixXd series = noise.white(50, 4);
    // The normal equations, another way to the same.
    const Eigen::MatrixXd weights =
        (design.transpose() * design).ldlt().solve(design.transpose() * series);
    const Eigen::MatrixXd wanted = series - design * weights;
    EXPECT_TRUE(near(residuals(series, pivoted_basis(design, 1e-9)), wanted, 1e-12));
    EXPECT_TRUE(near(residuals(series, singular_basis(design)), wanted, 1e-12));
}

TEST(Regression, DependentColumnsAreNamedAndChangeNothing)
{
    Noise noise(8);
    Eigen::MatrixXd design = noise.white(30, 5);
    design.col(3) = design.col(0) - 2 * design.col(1);
    design.col(4).setZero();
    const Basis basis = pivoted_basis(design, 1e-9);
    EXPECT_EQ(basis.rank(), 3);
    // Which of the three that depend on each other goes is up to the pivots.
    EXPECT_EQ(basis.dependent.size(), 2U);
    EXPECT_EQ(basis.dependent.back(), 4);
    const Eigen::MatrixXd series = noise.white(30, 3);
    EXPECT_TRUE(near(residuals(series, basis),
                     residuals(series, pivoted_basis(design.leftCols(3), 1e-9)), 1e-12));
    EXPECT_EQ(singular_basis(design).rank(), 3);
}

TEST(Regression, ToleranceIsAbsolute)
{
    Eigen::MatrixXd design = Eigen::MatrixXd::Zero(4, 2);
    design(0, 0) = 1;
    design(1, 1) = 1e-6;
    EXPECT_EQ(pivoted_basis(design, 1e-5).rank(), 1);
    EXPECT_THAT(pivoted_basis(design, 1e-5).dependent, ElementsAre(1));
    EXPECT_EQ(pivoted_basis(design, 1e-7).rank(), 2);
}

TEST(Regression, BasisIsOrthonormalForColumnsThatAreNearlyTheSame)
{
    Noise noise(9);
    Eigen::MatrixXd design = noise.white(60, 20);
    for (Eigen::Index i = 1; i < 20; ++i) {
        design.col(i) = design.col(0) + 1e-7 * design.col(i);
    }
    const Basis basis = pivoted_basis(design, 1e-9);
    EXPECT_EQ(basis.rank(), 20);
    EXPECT_TRUE(
        near(basis.columns.transpose() * basis.columns, Eigen::MatrixXd::Identity(20, 20), 1e-13));
}

TEST(Regression, MoreColumnsThanRows)
{
    Noise noise(10);
    const Eigen::MatrixXd design = noise.white(6, 9);
    EXPECT_EQ(pivoted_basis(design, 1e-9).rank(), 6);
    EXPECT_TRUE(near(residuals(noise.white(6, 2), pivoted_basis(design, 1e-9)),
                     Eigen::MatrixXd::Zero(6, 2), 1e-13));
}

TEST(Regression, EmptyDesignsSpanNothing)
{
    Noise noise(11);
    const Eigen::MatrixXd series = noise.white(7, 2);
    EXPECT_EQ(residuals(series, pivoted_basis(Eigen::MatrixXd(7, 0), 1e-9)), series);
    EXPECT_EQ(residuals(series, singular_basis(Eigen::MatrixXd(7, 0))), series);
    EXPECT_EQ(pivoted_basis(Eigen::MatrixXd(0, 3), 1e-9).rank(), 0);
    EXPECT_EQ(pivoted_basis(Eigen::MatrixXd::Zero(7, 3), 1e-9).rank(), 0);
    EXPECT_EQ(singular_basis(Eigen::MatrixXd::Zero(7, 3)).rank(), 0);
}

TEST(Regression, RowsMustFit)
{
    EXPECT_THAT(error_text<Error>([] {
                    residuals(Eigen::MatrixXd::Zero(5, 1),
                              pivoted_basis(Eigen::MatrixXd::Ones(6, 1), 1e-9));
                }),
                HasSubstr("series of 5 rows on a design of 6 rows"));
}

TEST(Regression, ZScores)
{
    Eigen::MatrixXd series(4, 2);
    series << 1, 5, 2, 5, 3, 5, 4, 5;
    const Eigen::MatrixXd found = zscored(series);
    EXPECT_NEAR(found(0, 0), -1.5 / std::sqrt(5.0 / 3), 1e-15);
    EXPECT_EQ(found.col(1), Eigen::VectorXd::Zero(4)) << "a constant stays 0";
    EXPECT_EQ(zscored(Eigen::MatrixXd::Constant(1, 1, 3))(0, 0), 0);
    EXPECT_EQ(zscored(Eigen::MatrixXd(0, 2)).cols(), 2);
}

} // namespace
