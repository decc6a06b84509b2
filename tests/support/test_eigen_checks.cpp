// SPDX-License-Identifier: GPL-3.0-or-later
//
// What eigen_checks.h is for: a comparison of matrices in a test sees their sizes.
#include <Eigen/Core>
#include <gtest/gtest.h>

#include <stdexcept>
#include <vector>

namespace
{

/// Of which the left columns, or the upper rows, are the same as those of another.
Eigen::MatrixXf ones(Eigen::Index rows, Eigen::Index columns)
{
    return Eigen::MatrixXf::Ones(rows, columns);
}

TEST(EigenChecks, MatricesOfOtherSizesAreNotEqual)
{
    EXPECT_EQ(ones(2, 3), ones(2, 3));
    EXPECT_THROW(EXPECT_EQ(ones(2, 3), ones(2, 2)), std::logic_error);
    EXPECT_THROW(EXPECT_EQ(ones(2, 2), ones(2, 3)), std::logic_error);
    EXPECT_THROW(EXPECT_EQ(ones(3, 2), ones(2, 2)), std::logic_error);
    EXPECT_THROW(EXPECT_EQ(ones(2, 3), ones(2, 0)), std::logic_error);
    EXPECT_THROW(EXPECT_EQ(ones(2, 3), ones(0, 0)), std::logic_error);
}

TEST(EigenChecks, SoAreExpressionsAndListsOfThem)
{
    const Eigen::MatrixXf wide = ones(2, 3);
    const Eigen::MatrixXf narrow = ones(2, 2);
    EXPECT_THROW(EXPECT_EQ(narrow, wide.middleCols(0, 1)), std::logic_error);
    EXPECT_THROW(EXPECT_EQ(wide.row(0), Eigen::RowVectorXf::Ones(2)), std::logic_error);
    EXPECT_THROW(EXPECT_EQ((std::vector{wide}), (std::vector{narrow})), std::logic_error);
    EXPECT_THROW(EXPECT_TRUE(wide == narrow), std::logic_error);
    EXPECT_THROW(EXPECT_TRUE(wide.isApprox(narrow)), std::logic_error);
    EXPECT_THROW(EXPECT_TRUE((wide.array() == narrow.array()).all()), std::logic_error);
}

TEST(EigenChecks, EntriesBeyondAMatrixAreNotRead)
{
    EXPECT_THROW(ones(2, 3)(2, 0), std::logic_error);
    EXPECT_THROW(ones(2, 3).middleCols(2, 2), std::logic_error);
}

} // namespace
