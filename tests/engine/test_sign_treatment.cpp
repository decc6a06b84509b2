// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/sign_treatment.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace
{

constexpr float nan = std::numeric_limits<float>::quiet_NaN();
constexpr float inf = std::numeric_limits<float>::infinity();

struct SignCase {
    int matrixValues;
    float before;
    float after;
};

class TreatSigns : public testing::TestWithParam<SignCase>
{
};

TEST_P(TreatSigns, TreatsEveryEntryAlike)
{
    const SignCase c = GetParam();
    Eigen::MatrixXf matrix = Eigen::MatrixXf::Constant(2, 2, c.before);
    treatSigns(matrix, c.matrixValues);
    for (Eigen::Index i = 0; i < matrix.size(); ++i) {
        if (std::isnan(c.after))
            EXPECT_TRUE(std::isnan(matrix(i)));
        else
            EXPECT_EQ(matrix(i), c.after);
        const bool known = c.matrixValues >= 0 && c.matrixValues <= 2;
        EXPECT_FALSE(known && matrix(i) < 0.0f);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Table, TreatSigns,
    testing::Values(SignCase{0, -0.5f, 0.5f}, SignCase{0, 0.5f, 0.5f}, SignCase{0, nan, nan},
                    SignCase{0, -inf, inf}, SignCase{0, 0.0f, 0.0f}, SignCase{1, -0.5f, 0.0f},
                    SignCase{1, 0.5f, 0.5f}, SignCase{1, nan, 0.0f}, SignCase{1, 0.0f, 0.0f},
                    SignCase{1, -inf, 0.0f}, SignCase{1, inf, inf}, SignCase{2, -0.5f, 0.5f},
                    SignCase{2, 0.5f, 0.0f}, SignCase{2, nan, 0.0f}, SignCase{2, 0.0f, 0.0f},
                    SignCase{2, -inf, inf}, SignCase{2, inf, 0.0f}, SignCase{3, -0.5f, -0.5f},
                    SignCase{-1, -0.5f, -0.5f}, SignCase{3, nan, nan}));

TEST(TreatSigns, NegativeOfMatrixWithoutNegativesIsZeroDiagonalIncluded)
{
    Eigen::MatrixXf matrix(2, 2);
    matrix << 1.0f, 0.3f, 0.3f, 1.0f;
    treatSigns(matrix, 2);
    EXPECT_EQ(matrix, Eigen::MatrixXf::Zero(2, 2));
}

TEST(TreatSigns, KeepsTheSizeOfAnEmptyMatrix)
{
    for (const int values : {0, 1, 2}) {
        Eigen::MatrixXf matrix(0, 0);
        treatSigns(matrix, values);
        EXPECT_EQ(matrix.size(), 0);
    }
}

} // namespace
