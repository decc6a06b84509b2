// SPDX-License-Identifier: GPL-3.0-or-later
#include "signals/drift.h"
#include "tests/signals/error_text.h"
#include "tests/signals/near.h"
#include "tests/signals/noise.h"

#include <gmock/gmock.h>

namespace
{

using namespace signals;
using testing::ElementsAre;
using testing::HasSubstr;

TEST(Drift, CountOfCosines)
{
    EXPECT_EQ(cosine_count(250, 1.89, 0.008), 7);
    EXPECT_EQ(cosine_count(250, 2, 0.01), 10) << "the edge itself belongs to the drift";
    EXPECT_EQ(cosine_count(30, 2, 0.008), 0) << "a short run has none";
    EXPECT_EQ(cosine_count(30, 2, 10), 29) << "never more than n - 1";
    EXPECT_EQ(cosine_count(100, 2, 0), 0);
    EXPECT_EQ(cosine_count(1, 2, 1), 0);
    EXPECT_EQ(cosine_count(0, 2, 1), 0);
}

TEST(Drift, NumbersBelowAndAboveABand)
{
    // Cosine k of 10 volumes of 2 s has k/40 Hz: 0.025, 0.05, .. 0.225.
    EXPECT_THAT(cosines_below(10, 2, 0.06), ElementsAre(1, 2));
    EXPECT_THAT(cosines_above(10, 2, 0.06, 0.18), ElementsAre(8, 9));
    EXPECT_THAT(cosines_above(10, 2, 0, 0.2), ElementsAre(9)) << "0.2 Hz itself passes";
    EXPECT_THAT(cosines_above(10, 2, 0, 0.3), ElementsAre());
}

TEST(Drift, CosinesAreOrthonormalOverAllVolumes)
{
    const Eigen::MatrixXd basis = cosines(17, cosines_below(17, 1, 1));
    ASSERT_EQ(basis.cols(), 16);
    EXPECT_TRUE(near(basis.transpose() * basis, Eigen::MatrixXd::Identity(16, 16), 1e-14));
    EXPECT_TRUE(near(basis.colwise().sum(), Eigen::RowVectorXd::Zero(16), 1e-14));
    EXPECT_NEAR(basis(3, 4), std::sqrt(2.0 / 17) * std::cos(M_PI / 17 * 3.5 * 5), 1e-15);
}

TEST(Drift, CosineBeyondTheRunIsRefused)
{
    EXPECT_THAT(error_text<Error>([] {
                    cosines(8, {3, 8});
                }),
                HasSubstr("cosine 8 of 8 volumes: expected 1 to 7"));
    EXPECT_THAT(error_text<Error>([] { cosines(8, {0}); }),
                HasSubstr("cosine 0 of 8 volumes: expected 1 to 7"));
}

TEST(Drift, DetrendedSeriesAreOrthogonalToMeanAndLine)
{
    Noise noise(1);
    Eigen::MatrixXd series = 3 * noise.white(40, 3).array() + 1000;
    series.col(2) = Eigen::VectorXd::LinSpaced(40, -7, 12);
    const Eigen::MatrixXd found = detrended(series);
    const Eigen::RowVectorXd line = Eigen::RowVectorXd::LinSpaced(40, 0, 39);
    EXPECT_TRUE(near(line * found, Eigen::RowVectorXd::Zero(3), 1e-9));
    EXPECT_TRUE(near(found.colwise().sum(), Eigen::RowVectorXd::Zero(3), 1e-10));
    EXPECT_TRUE(near(found.col(2), Eigen::VectorXd::Zero(40), 1e-12));
}

TEST(Drift, DetrendOfFewRows)
{
    EXPECT_EQ(detrended(Eigen::MatrixXd::Constant(1, 2, 5)), Eigen::MatrixXd::Zero(1, 2));
    EXPECT_TRUE(near(detrended(Eigen::MatrixXd::Random(2, 3)), Eigen::MatrixXd::Zero(2, 3), 1e-15));
    EXPECT_EQ(detrended(Eigen::MatrixXd(0, 3)).cols(), 3);
    EXPECT_EQ(detrended(Eigen::MatrixXd(5, 0)).rows(), 5);
}

} // namespace
