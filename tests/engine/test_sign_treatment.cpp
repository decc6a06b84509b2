// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/sign_treatment.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace
{

constexpr float nan = std::numeric_limits<float>::quiet_NaN();
constexpr float inf = std::numeric_limits<float>::infinity();

constexpr auto absolute = MatrixValues::Absolute;
constexpr auto positive = MatrixValues::Positive;
constexpr auto negative = MatrixValues::Negative;
constexpr auto both = MatrixValues::Signed;
constexpr auto unknown = static_cast<MatrixValues>(4);

struct SignCase {
    MatrixValues values;
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
    treatSigns(matrix, c.values);
    for (Eigen::Index i = 0; i < matrix.size(); ++i) {
        if (std::isnan(c.after))
            EXPECT_TRUE(std::isnan(matrix(i)));
        else
            EXPECT_EQ(matrix(i), c.after);
        const bool known = nameOf(c.values, matrixValuesNames) != nullptr;
        EXPECT_FALSE(known && c.values != both && matrix(i) < 0.0f);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Table, TreatSigns,
    testing::Values(SignCase{absolute, -0.5f, 0.5f}, SignCase{absolute, 0.5f, 0.5f},
                    SignCase{absolute, nan, nan}, SignCase{absolute, -inf, inf},
                    SignCase{absolute, 0.0f, 0.0f}, SignCase{positive, -0.5f, 0.0f},
                    SignCase{positive, 0.5f, 0.5f}, SignCase{positive, nan, 0.0f},
                    SignCase{positive, 0.0f, 0.0f}, SignCase{positive, -inf, 0.0f},
                    SignCase{positive, inf, inf}, SignCase{negative, -0.5f, 0.5f},
                    SignCase{negative, 0.5f, 0.0f}, SignCase{negative, nan, 0.0f},
                    SignCase{negative, 0.0f, 0.0f}, SignCase{negative, -inf, inf},
                    SignCase{negative, inf, 0.0f}, SignCase{unknown, -0.5f, -0.5f},
                    SignCase{static_cast<MatrixValues>(-1), -0.5f, -0.5f},
                    SignCase{unknown, nan, nan}, SignCase{both, -0.5f, -0.5f},
                    SignCase{both, 0.5f, 0.5f}, SignCase{both, nan, nan}));

TEST(TreatSigns, NegativeOfMatrixWithoutNegativesIsZeroDiagonalIncluded)
{
    Eigen::MatrixXf matrix(2, 2);
    matrix << 1.0f, 0.3f, 0.3f, 1.0f;
    treatSigns(matrix, MatrixValues::Negative);
    EXPECT_EQ(matrix, Eigen::MatrixXf::Zero(2, 2));
}

TEST(TreatSigns, KeepsTheSizeOfAnEmptyMatrix)
{
    for (const auto &[values, name] : matrixValuesNames) {
        Eigen::MatrixXf matrix(0, 0);
        treatSigns(matrix, values);
        EXPECT_EQ(matrix.size(), 0) << name;
    }
}

} // namespace
