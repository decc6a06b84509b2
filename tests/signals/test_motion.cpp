// SPDX-License-Identifier: GPL-3.0-or-later
#include "signals/motion.h"
#include "tests/signals/error_text.h"
#include "tests/signals/near.h"
#include "tests/signals/noise.h"

#include <gmock/gmock.h>

namespace
{

using namespace signals;
using testing::HasSubstr;

TEST(Motion, FramewiseDisplacement)
{
    Eigen::MatrixXd parameters(3, 6);
    parameters << 0, 0, 0, 0, 0, 0,  //
        1, -2, 3, 0.01, -0.02, 0.03, //
        1, -2, 3, 0.01, -0.02, 0;
    Eigen::ArrayXd wanted(3);
    wanted << NAN, 6 + 50 * 0.06, 50 * 0.03;
    EXPECT_TRUE(near(framewise_displacement(parameters), wanted, 1e-14));
}

TEST(Motion, AllPackagesGiveTheSame)
{
    Noise noise(12);
    const Eigen::MatrixXd spm = 0.1 * noise.white(9, 6);
    Eigen::MatrixXd fsl(9, 6);
    fsl << spm.rightCols(3), spm.leftCols(3);
    Eigen::MatrixXd afni = fsl;
    afni.leftCols(3) *= 180 / M_PI;
    EXPECT_TRUE(near(motion_parameters(spm, MotionOrder::spm), spm, 0));
    EXPECT_TRUE(near(motion_parameters(fsl, MotionOrder::fsl), spm, 0));
    EXPECT_TRUE(near(motion_parameters(afni, MotionOrder::afni), spm, 1e-16));
}

TEST(Motion, FewVolumes)
{
    EXPECT_EQ(framewise_displacement(Eigen::MatrixXd(0, 6)).size(), 0);
    EXPECT_TRUE(std::isnan(framewise_displacement(Eigen::MatrixXd::Zero(1, 6))[0]));
}

TEST(Motion, SixColumns)
{
    EXPECT_THAT(error_text<Error>([] { framewise_displacement(Eigen::MatrixXd::Zero(3, 7)); }),
                HasSubstr("7 columns: expected 6"));
    EXPECT_THAT(
        error_text<Error>([] { motion_parameters(Eigen::MatrixXd::Zero(3, 1), MotionOrder::fsl); }),
        HasSubstr("1 column: expected 6"));
}

} // namespace
