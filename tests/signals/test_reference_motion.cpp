// SPDX-License-Identifier: GPL-3.0-or-later
// FD and DVARS of two recordings, as another package computed them.
#include "signals/dvars.h"
#include "signals/motion.h"
#include "signals/volumes.h"
#include "tests/signals/near.h"
#include "tests/signals/reference_data.h"

namespace
{

using namespace signals;

class ReferenceMotion : public testing::Test
{
protected:
    void SetUp() override
    {
        if (!reference_data::is_there()) {
            GTEST_SKIP() << "the folder of reference numbers is missing";
        }
    }
};

TEST_F(ReferenceMotion, FramewiseDisplacement)
{
    const Eigen::MatrixXd motion = reference_data::matrix("motion/fsl_mcflirt_movpar.txt");
    const Eigen::MatrixXd wanted = reference_data::matrix("motion/fsl_motion_outliers_fd.txt");
    const Eigen::ArrayXd found =
        framewise_displacement(motion_parameters(motion, MotionOrder::fsl));
    ASSERT_EQ(found.size(), 365);
    EXPECT_TRUE(std::isnan(found[0]));
    EXPECT_TRUE(near(found.tail(364), wanted, 1e-6));
}

TEST_F(ReferenceMotion, Dvars)
{
    const Eigen::MatrixXd image = reference_data::image("motion/ds003_sub-01_mc.nii.gz");
    const Eigen::MatrixXd mask = reference_data::image("motion/ds003_sub-01_mc_brainmask.nii.gz");
    // Columns: standardised, plain, standardised by voxel.
    const Eigen::MatrixXd wanted = reference_data::matrix("motion/ds003_sub-01_mc.DVARS");
    const Flags inside = (mask.row(0).array() > 0).transpose();
    const signals::Dvars found = dvars(image(Eigen::all, positions(inside)));
    ASSERT_EQ(found.plain.size(), 20);
    EXPECT_TRUE(std::isnan(found.plain[0]));
    EXPECT_TRUE(std::isnan(found.standardised[0]));
    EXPECT_TRUE(near(found.plain.tail(19), wanted.col(1), 1e-5));
    EXPECT_TRUE(near(found.standardised.tail(19), wanted.col(0), 6e-3));
}

} // namespace
