// SPDX-License-Identifier: GPL-3.0-or-later
#include "signals/spline.h"
#include "tests/signals/error_text.h"
#include "tests/signals/near.h"
#include "tests/signals/noise.h"

#include <Eigen/LU>
#include <gmock/gmock.h>

namespace
{

using namespace signals;
using testing::HasSubstr;

Eigen::ArrayXd list(std::initializer_list<double> values)
{
    return Eigen::Map<const Eigen::ArrayXd>(values.begin(), Eigen::Index(values.size()));
}

Flags flags(std::initializer_list<int> values)
{
    Flags result(values.size());
    std::copy(values.begin(), values.end(), result.begin());
    return result;
}

TEST(Spline, CubicsAreExact)
{
    const Eigen::ArrayXd knots = list({0, 1, 2.5, 3, 7, 8, 8.5});
    const auto cubic = [](const Eigen::ArrayXd &x) -> Eigen::MatrixXd {
        return (2 * x.cube() - 3 * x.square() + x - 5).matrix();
    };
    const Eigen::ArrayXd at = Eigen::ArrayXd::LinSpaced(50, -1, 10);
    EXPECT_TRUE(relatively_near(cubic_spline(knots, cubic(knots), at), cubic(at), 1e-13));
    EXPECT_TRUE(
        relatively_near(cubic_spline(knots.head(4), cubic(knots.head(4)), at), cubic(at), 1e-13))
        << "four knots";
}

TEST(Spline, FewKnots)
{
    const Eigen::ArrayXd at = list({-1, 0, 1.5, 4});
    EXPECT_TRUE(near(cubic_spline(list({1}), list({7}), at), list({7, 7, 7, 7}), 0));
    EXPECT_TRUE(near(cubic_spline(list({0, 2}), list({1, 5}), at), (1 + 2 * at).eval(), 1e-14));
    EXPECT_TRUE(
        near(cubic_spline(list({0, 1, 3}), list({0, 1, 9}), at), at.square().eval(), 1e-14));
}

TEST(Spline, InteriorIsSmoothToTheSecondDerivativeAndTheEndsToTheThird)
{
    Noise noise(4);
    const Eigen::ArrayXd knots = list({0, 1, 2, 4, 5, 9, 10, 11});
    const Eigen::MatrixXd values = noise.white(8, 1);
    // Derivatives from the cubic through four points of a piece.
    const auto derivatives = [&](double from, double to, double at) -> Eigen::Array3d {
        const Eigen::ArrayXd x = Eigen::ArrayXd::LinSpaced(4, from, to);
        const Eigen::MatrixXd y = cubic_spline(knots, values, x);
        Eigen::Matrix4d powers;
        powers << Eigen::ArrayXd::Ones(4), x - at, (x - at).square(), (x - at).cube();
        const Eigen::Vector4d c = powers.inverse() * y;
        return {c[1], 2 * c[2], 6 * c[3]};
    };
    for (Eigen::Index i = 1; i < 7; ++i) {
        const Eigen::Array3d before = derivatives(knots[i - 1], knots[i], knots[i]);
        const Eigen::Array3d behind = derivatives(knots[i], knots[i + 1], knots[i]);
        EXPECT_TRUE(near(before.head(2), behind.head(2), 1e-10)) << "knot " << i;
        const bool at_end = i == 1 || i == 6;
        EXPECT_EQ(std::abs(before[2] - behind[2]) < 1e-9, at_end) << "knot " << i;
    }
}

TEST(Spline, IsLinearInTheValues)
{
    Noise noise(5);
    const Eigen::ArrayXd knots = Eigen::ArrayXd::LinSpaced(9, 0, 8);
    const Eigen::MatrixXd values = noise.white(9, 4);
    const Eigen::ArrayXd at = list({0.5, 3.3, 7.9});
    EXPECT_TRUE(near(cubic_spline(knots, values, at).rowwise().mean(),
                     cubic_spline(knots, values.rowwise().mean(), at), 1e-14));
}

TEST(Spline, KnotsThatAreNone)
{
    const auto text = [](const Eigen::ArrayXd &knots, const Eigen::MatrixXd &values) {
        return error_text<Error>([&] { cubic_spline(knots, values, knots); });
    };
    EXPECT_THAT(text(Eigen::ArrayXd(), Eigen::MatrixXd(0, 1)), HasSubstr("0 knots and 0 values"));
    EXPECT_THAT(text(list({1, 2}), Eigen::MatrixXd::Zero(3, 1)), HasSubstr("2 knots and 3 values"));
    EXPECT_THAT(text(list({1, 2, 2}), Eigen::MatrixXd::Zero(3, 1)),
                HasSubstr("knot 2 of a spline is at 2, expected more than 2"));
}

TEST(Spline, InterpolationFillsInnerGapsAndRepeatsTheEnds)
{
    const Eigen::ArrayXd t = Eigen::ArrayXd::LinSpaced(10, 0, 9);
    const Eigen::VectorXd wanted = (t.cube() - 20 * t.square()).matrix();
    const Flags kept = flags({0, 1, 1, 0, 0, 1, 1, 1, 0, 0});
    Eigen::MatrixXd series = wanted;
    for (Eigen::Index i = 0; i < 10; ++i) {
        series(i, 0) = kept[i] ? wanted[i] : 1e6;
    }
    const Eigen::VectorXd found = interpolated(series, kept);
    EXPECT_TRUE(near(found.segment(1, 7), wanted.segment(1, 7), 1e-10));
    EXPECT_EQ(found[0], wanted[1]);
    EXPECT_EQ(found[8], wanted[7]);
    EXPECT_EQ(found[9], wanted[7]);
}

TEST(Spline, InterpolationLeavesKeptRowsAsTheyAre)
{
    Noise noise(6);
    const Eigen::MatrixXd series = noise.white(12, 3);
    EXPECT_EQ(interpolated(series, Flags::Constant(12, true)), series);
    Flags one = Flags::Constant(12, false);
    one[7] = true;
    EXPECT_EQ(interpolated(series, one), series.row(7).replicate(12, 1));
}

TEST(Spline, InterpolationFromNothing)
{
    EXPECT_THAT(error_text<Error>(
                    [] { interpolated(Eigen::MatrixXd::Zero(4, 1), Flags::Constant(4, false)); }),
                HasSubstr("0 kept of 4 volumes"));
    EXPECT_THAT(error_text<Error>(
                    [] { interpolated(Eigen::MatrixXd::Zero(4, 1), Flags::Constant(5, true)); }),
                HasSubstr("4 rows by 5 flags"));
}

} // namespace
