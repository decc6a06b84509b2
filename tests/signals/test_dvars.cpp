// SPDX-License-Identifier: GPL-3.0-or-later
#include "signals/dvars.h"
#include "tests/signals/error_text.h"
#include "tests/signals/near.h"
#include "tests/signals/noise.h"

#include <gmock/gmock.h>

namespace
{

using namespace signals;
using testing::HasSubstr;

TEST(DvarsOfRun, PlainIsTheRootMeanSquareOfTheChange)
{
    Eigen::MatrixXd series(5, 2);
    series << 0, 1, 3, 5, 3, 2, 4, 8, 6, 3;
    const Dvars found = dvars(series);
    Eigen::ArrayXd wanted(5);
    wanted << NAN, std::sqrt((9 + 16) / 2.0), std::sqrt((0 + 9) / 2.0), std::sqrt((1 + 36) / 2.0),
        std::sqrt((4 + 25) / 2.0);
    EXPECT_TRUE(near(found.plain, wanted, 1e-14));
}

TEST(DvarsOfRun, StandardisedByQuartilesAndLagOne)
{
    Eigen::MatrixXd series(6, 1);
    series << 4, 1, 3, 7, 2, 7;
    // Sorted 1 2 3 4 7 7: the values at floor(1.25) and floor(3.75).
    const double deviation = (4 - 2) / 1.349;
    // Demeaned 0 -3 -1 3 -2 3.
    const double lag_one = (0 * -3 + -3 * -1 + -1 * 3 + 3 * -2 + -2 * 3) / 32.0;
    const double expected = std::sqrt(2 * (1 - lag_one)) * deviation;
    const Dvars found = dvars(series);
    EXPECT_TRUE(near(found.standardised.tail(5), found.plain.tail(5) / expected, 1e-14));
}

TEST(DvarsOfRun, StandardisedIsAboutOneForNoiseAndDoesNotDependOnScale)
{
    Noise noise(13);
    const Eigen::MatrixXd series = noise.serial(300, 400, 0.4).array() + 100;
    const Dvars found = dvars(series);
    EXPECT_NEAR(found.standardised.tail(299).mean(), 1, 0.01);
    EXPECT_TRUE(near(dvars(7.5 * series).standardised, found.standardised, 1e-12));
}

TEST(DvarsOfRun, VoxelsThatHardlyChangeAreLeftOut)
{
    Noise noise(14);
    Eigen::MatrixXd series = noise.white(40, 3);
    const Dvars wanted = dvars(series.leftCols(1));
    series.col(1).setConstant(5);
    // One spike: the quartiles are equal.
    series.col(2).setZero();
    series(20, 2) = 1000;
    const Dvars found = dvars(series);
    EXPECT_TRUE(near(found.plain, wanted.plain, 0));
    EXPECT_TRUE(near(found.standardised, wanted.standardised, 0));
}

TEST(DvarsOfRun, Nothing)
{
    EXPECT_TRUE(dvars(Eigen::MatrixXd(4, 0)).plain.isNaN().all());
    EXPECT_EQ(dvars(Eigen::MatrixXd(0, 3)).plain.size(), 0);
    EXPECT_TRUE(dvars(Eigen::MatrixXd::Zero(1, 3)).standardised.isNaN().all());
}

TEST(DvarsOfRun, ValuesThatAreNotFiniteAreRefusedWithTheirPlace)
{
    Eigen::MatrixXd series = Eigen::MatrixXd::Zero(5, 3);
    series(4, 2) = INFINITY;
    EXPECT_THAT(error_text<Error>([&] { dvars(series); }),
                HasSubstr("voxel 2, volume 4 (both from 0) is inf"));
}

TEST(DvarsOfRun, ScaleBringsTheMedianToAThousand)
{
    Eigen::MatrixXd series(2, 2);
    series << 1, 8, 3, 5;
    EXPECT_EQ(dvars_scale(series), 1000 / 4.0);
    EXPECT_EQ(dvars_scale(series.leftCols(1).topRows(1)), 1000);
    EXPECT_TRUE(std::isnan(dvars_scale(Eigen::MatrixXd::Zero(3, 3))));
    EXPECT_TRUE(std::isnan(dvars_scale(Eigen::MatrixXd(0, 3))));
}

} // namespace
