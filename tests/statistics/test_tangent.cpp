// SPDX-License-Identifier: GPL-3.0-or-later
#include <cmath>

#include <Eigen/Dense>
#include <gtest/gtest.h>

#include "statistics/tangent.h"
#include "tests/statistics/error_text.h"
#include "tests/statistics/random_data.h"

namespace
{

using namespace statistics;

double largest(const Eigen::MatrixXd &matrix)
{
    return matrix.cwiseAbs().maxCoeff();
}

Eigen::MatrixXd square_root(const Eigen::MatrixXd &matrix)
{
    return Eigen::SelfAdjointEigenSolver<Eigen::MatrixXd>(matrix).operatorSqrt();
}

/// By its series, of a matrix halved until that converges, then squared as often.
Eigen::MatrixXd exponential(const Eigen::MatrixXd &matrix)
{
    constexpr int halvings = 10;
    const Eigen::MatrixXd small = std::ldexp(1.0, -halvings) * matrix;
    Eigen::MatrixXd term = Eigen::MatrixXd::Identity(matrix.rows(), matrix.cols());
    Eigen::MatrixXd sum = term;
    for (int k = 1; k < 20; ++k) {
        term = Eigen::MatrixXd(term * small) / k;
        sum += term;
    }
    for (int k = 0; k < halvings; ++k) {
        sum = Eigen::MatrixXd(sum * sum);
    }
    return sum;
}

TEST(Tangent, CommutingMatricesHaveTheirGeometricMean)
{
    // Of diagonal matrices the mean is that of each entry.
    std::vector<Eigen::MatrixXd> covariances;
    for (const double x : {1.0, 4.0, 2.0}) {
        covariances.emplace_back(Eigen::Vector3d(x, 1.0 / x, 5.0).asDiagonal());
    }
    const TangentSpace space = tangent_space(covariances);
    EXPECT_NEAR(space.mean(0, 0), 2.0, 1e-6);
    EXPECT_NEAR(space.mean(1, 1), 0.5, 1e-6);
    EXPECT_NEAR(space.mean(2, 2), 5.0, 1e-6);
    EXPECT_NEAR(space.tangent[1](0, 0), std::log(2.0), 1e-6);
    EXPECT_NEAR(space.tangent[1](1, 1), -std::log(2.0), 1e-6);
    EXPECT_NEAR(space.tangent[1](2, 2), 0.0, 1e-6);
}

TEST(Tangent, OfTwoMatricesTheMeanHasAClosedForm)
{
    RandomNumbers random(3);
    const Eigen::MatrixXd a = random.covariance(6);
    const Eigen::MatrixXd b = random.covariance(6);
    // A^1/2 (A^-1/2 B A^-1/2)^1/2 A^1/2
    const Eigen::MatrixXd root = square_root(a);
    const Eigen::MatrixXd inverse = root.inverse();
    const Eigen::MatrixXd between = inverse * b * inverse;
    const Eigen::MatrixXd mean = root * square_root(between) * root;
    const TangentSpace space = tangent_space({a, b});
    EXPECT_LT(largest(space.mean - mean), 1e-5 * largest(mean));
    EXPECT_LT(space.rest, 1e-7);
}

TEST(Tangent, ProjectionsAreLogarithmsAroundTheMean)
{
    RandomNumbers random(4);
    std::vector<Eigen::MatrixXd> covariances;
    for (int i = 0; i < 9; ++i) {
        covariances.push_back(random.covariance(8));
    }
    const TangentSpace space = tangent_space(covariances);
    ASSERT_EQ(space.tangent.size(), 9U);
    EXPECT_LE(space.steps, 30);
    const Eigen::MatrixXd root = square_root(space.mean);
    const Eigen::MatrixXd inverse = root.inverse();
    Eigen::MatrixXd sum = Eigen::MatrixXd::Zero(8, 8);
    for (std::size_t i = 0; i < 9; ++i) {
        const Eigen::MatrixXd whitened = inverse * covariances[i] * inverse;
        EXPECT_LT(largest(exponential(space.tangent[i]) - whitened), 1e-9 * largest(whitened));
        EXPECT_EQ(space.tangent[i], Eigen::MatrixXd(space.tangent[i].transpose()));
        sum += space.tangent[i];
    }
    EXPECT_LT(sum.norm() / 9.0 / 64.0, 1e-7) << "around the mean they cancel";

    // The mean of transformed matrices is the transformed mean.
    const Eigen::MatrixXd transform = random.normal(8, 8);
    std::vector<Eigen::MatrixXd> moved;
    for (const Eigen::MatrixXd &covariance : covariances) {
        const Eigen::MatrixXd product = transform * covariance * transform.transpose();
        moved.emplace_back((product + product.transpose()) / 2.0);
    }
    const Eigen::MatrixXd wanted = transform * space.mean * transform.transpose();
    EXPECT_LT(largest(tangent_space(moved).mean - wanted), 1e-4 * largest(wanted));
}

TEST(Tangent, OneSubjectIsItsOwnMean)
{
    const Eigen::MatrixXd a = RandomNumbers(3).covariance(5);
    const TangentSpace space = tangent_space({a});
    EXPECT_LT(largest(space.mean - a), 1e-14);
    EXPECT_LT(largest(space.tangent[0]), 1e-12);
    EXPECT_EQ(space.steps, 0);
}

TEST(Tangent, RefusesWhatHasNoLogarithm)
{
    const Eigen::MatrixXd good = RandomNumbers(3).covariance(3);
    const auto text = [&](const Eigen::MatrixXd &second) {
        return error_text([&] { tangent_space({good, second}); });
    };
    EXPECT_EQ(error_text([] { tangent_space({}); }), "there are no covariances");
    EXPECT_EQ(error_text([] { tangent_space({Eigen::MatrixXd(0, 0)}); }),
              "there are no covariances");
    EXPECT_EQ(text(good.topRows(2)),
              "the covariance of subject 1 has 2 x 3 entries, the first one has 3 rows");
    EXPECT_EQ(text(RandomNumbers(3).covariance(4)),
              "the covariance of subject 1 has 4 x 4 entries, the first one has 3 rows");
    EXPECT_EQ(text(Eigen::MatrixXd::Ones(3, 3)),
              "the covariance of subject 1 is not positive definite; shrinkage makes it so");
    EXPECT_EQ(text(-good),
              "the covariance of subject 1 is not positive definite; shrinkage makes it so");
    Eigen::MatrixXd bad = good;
    bad(0, 1) += 0.1;
    EXPECT_EQ(text(bad), "the covariance of subject 1 is not symmetric or not finite");
    bad(0, 1) = bad(1, 0) = std::nan("");
    EXPECT_EQ(text(bad), "the covariance of subject 1 is not symmetric or not finite");
}

TEST(Tangent, SaysWhenItDoesNotConverge)
{
    // Needles that point in slightly different directions.
    std::vector<Eigen::MatrixXd> covariances;
    for (const double angle : {0.0, 0.1, 0.2, 0.3, 0.4}) {
        Eigen::Matrix2d turn;
        turn << std::cos(angle), -std::sin(angle), std::sin(angle), std::cos(angle);
        const Eigen::Matrix2d needle =
            turn * Eigen::Vector2d(1.0, 1e-6).asDiagonal() * turn.transpose();
        covariances.emplace_back((needle + needle.transpose()) / 2.0);
    }
    EXPECT_EQ(error_text([&] { tangent_space(covariances); }),
              "the geometric mean of the covariances was not found in 30 steps");
    // Their sum is beyond what a number can be.
    const Eigen::MatrixXd huge = 1e308 * Eigen::MatrixXd::Identity(2, 2);
    EXPECT_NE(error_text([&] { tangent_space({huge, huge}); }), "no error");
}

} // namespace
