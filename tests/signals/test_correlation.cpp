// SPDX-License-Identifier: GPL-3.0-or-later
#include "signals/correlation.h"
#include "tests/signals/error_text.h"
#include "tests/signals/near.h"
#include "tests/signals/noise.h"

#include <gmock/gmock.h>

namespace
{

using namespace signals;
using testing::HasSubstr;

TEST(Pearson, BySums)
{
    Eigen::MatrixXd series(5, 2);
    series << 1, 2, 2, 1, 3, 4, 4, 3, 5, 5;
    const Eigen::MatrixXd r = pearson(series);
    EXPECT_NEAR(r(0, 1), 0.8, 1e-15);
    EXPECT_EQ(r(1, 0), r(0, 1));
    EXPECT_EQ(r(0, 0), 1);
}

TEST(Pearson, SurvivesLargeLevelsAndScales)
{
    Noise noise(50);
    const Eigen::MatrixXd series = noise.white(200, 4);
    Eigen::MatrixXd shifted = series;
    shifted.col(0).array() += 1e6;
    shifted.col(1) *= 1e-160;
    shifted.col(2) *= 1e150;
    EXPECT_TRUE(near(pearson(shifted), pearson(series), 1e-9));
}

TEST(Pearson, IsSymmetricToTheBitWithUnitDiagonal)
{
    const Eigen::MatrixXd r = pearson(Noise(51).white(123, 77));
    EXPECT_TRUE(near(r, r.transpose(), 0));
    EXPECT_TRUE((r.diagonal().array() == 1).all());
    EXPECT_LE(r.cwiseAbs().maxCoeff(), 1);
}

TEST(Pearson, EqualSeriesAreAtMostOne)
{
    Eigen::MatrixXd series(300, 2);
    series.col(0) = Noise(52).white(300, 1);
    series.col(1) = -3.7 * series.col(0);
    EXPECT_GE(pearson(series)(0, 1), -1);
    EXPECT_NEAR(pearson(series)(0, 1), -1, 1e-14);
}

TEST(Pearson, SeriesThatAreConstantOrMissing)
{
    Eigen::MatrixXd series = Noise(53).white(30, 4);
    series.col(1).setConstant(0.1);
    series(7, 2) = NAN;
    for (const Eigen::MatrixXd &r : {pearson(series), spearman(series)}) {
        for (const int node : {1, 2}) {
            EXPECT_TRUE(r.row(node).array().isNaN().all());
            EXPECT_TRUE(r.col(node).array().isNaN().all());
        }
        EXPECT_EQ(r(0, 0), 1);
        EXPECT_TRUE(std::isfinite(r(0, 3)));
    }
}

TEST(Pearson, Nothing)
{
    EXPECT_EQ(pearson(Eigen::MatrixXd(9, 0)).size(), 0);
    EXPECT_TRUE(pearson(Eigen::MatrixXd(0, 2)).array().isNaN().all());
    EXPECT_TRUE(pearson(Eigen::MatrixXd::Ones(1, 2)).array().isNaN().all());
}

TEST(Spearman, RanksWithTies)
{
    Eigen::MatrixXd series(6, 2);
    series << 10, 1, 20, 1, 20, 5, 20, 3, 50, 9, 1e9, 7;
    Eigen::MatrixXd ranks(6, 2);
    ranks << 1, 1.5, 3, 1.5, 3, 4, 3, 3, 5, 6, 6, 5;
    EXPECT_TRUE(near(spearman(series), pearson(ranks), 1e-15));
}

TEST(Spearman, OnlyTheOrderCounts)
{
    const Eigen::MatrixXd series = Noise(54).white(80, 3);
    EXPECT_TRUE(near(spearman(series), spearman(series.array().exp().matrix()), 1e-15));
}

TEST(FisherZ, IsClippedAndCounted)
{
    Eigen::MatrixXd r(3, 3);
    r << 1, 0.5, -1, 0.5, 1, NAN, -1, NAN, 1;
    const FisherZ found = fisher_z(r);
    const double most = std::atanh(1 - 1e-7);
    EXPECT_EQ(found.z(0, 0), most);
    EXPECT_EQ(found.z(0, 2), -most);
    EXPECT_NEAR(found.z(0, 1), std::atanh(0.5), 1e-15);
    EXPECT_TRUE(std::isnan(found.z(1, 2)));
    EXPECT_EQ(found.clipped, 1) << "of the pairs, not of the diagonal";
    EXPECT_EQ(fisher_z(Eigen::MatrixXd()).clipped, 0);
}

TEST(Covariance, DivisorIsTheDegreesOfFreedom)
{
    Eigen::MatrixXd series(3, 2);
    series << 1, 0, 2, 0, 6, 3;
    const Eigen::MatrixXd found = covariance(series, 1.5);
    Eigen::Matrix2d wanted;
    wanted << 14 / 1.5, 9 / 1.5, 9 / 1.5, 6 / 1.5;
    EXPECT_TRUE(near(found, wanted, 1e-14));
    EXPECT_THAT(error_text<Error>([&] { covariance(series, 0); }),
                HasSubstr("0 degrees of freedom: expected more than 0"));
    EXPECT_THAT(error_text<Error>([&] { covariance(series, NAN); }), HasSubstr("n/a degrees"));
    // A series that is infinite throughout is not one that does not change.
    Eigen::MatrixXd infinite = Eigen::MatrixXd::Constant(5, 2, INFINITY);
    infinite.col(1).setConstant(7);
    EXPECT_TRUE(std::isnan(covariance(infinite, 4)(0, 0)));
    EXPECT_EQ(covariance(infinite, 4)(1, 1), 0);
}

TEST(Covariance, ToCorrelation)
{
    const Eigen::MatrixXd series = Noise(55).white(40, 5);
    EXPECT_TRUE(near(correlation_of(covariance(series, 12)), pearson(series), 1e-14));
    EXPECT_THAT(error_text<Error>([] { correlation_of(Eigen::MatrixXd::Zero(2, 3)); }),
                HasSubstr("2 rows and 3 columns"));
}

} // namespace
