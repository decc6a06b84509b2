// SPDX-License-Identifier: GPL-3.0-or-later
#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "statistics/distributions.h"
#include "tests/statistics/error_text.h"

namespace
{

using namespace statistics;

constexpr double pi = 3.14159265358979323846;

void expect_close(double value, double wanted)
{
    EXPECT_LE(std::abs(value - wanted), 1e-12 * std::abs(wanted)) << value << " for " << wanted;
}

struct Beta {
    double a;
    double b;
    double x;
    double value;
};

TEST(IncompleteBeta, ValuesOfEightyDigitArithmetic)
{
    // The hypergeometric series, summed with 80 digits.
    const Beta table[] = {
        {0.5, 0.5, 0.0009765625, 0.019897607325877215},
        {0.5, 0.5, 0.125, 0.23005345616261588},
        {0.5, 0.5, 0.5, 0.5},
        {0.5, 0.5, 0.9375, 0.8391387534896675},
        {0.5, 0.5, 0.9990234375, 0.9801023926741228},
        {1.0, 0.5, 0.0009765625, 0.0004884005175327631},
        {1.0, 0.5, 0.125, 0.06458565330651465},
        {1.0, 0.5, 0.5, 0.2928932188134525},
        {1.0, 0.5, 0.9375, 0.75},
        {1.0, 0.5, 0.9990234375, 0.96875},
        {1.5, 2.5, 0.0009765625, 0.00010352544610306976},
        {1.5, 2.5, 0.125, 0.13355494797874679},
        {1.5, 2.5, 0.5, 0.7122065907891938},
        {1.5, 2.5, 0.9375, 0.9980555242242729},
        {1.5, 2.5, 0.9990234375, 0.9999999393083864},
        {10.0, 0.5, 0.0009765625, 1.3905670615414337e-31},
        {10.0, 0.5, 0.125, 1.743069853208229e-10},
        {10.0, 0.5, 0.5, 0.0002334474347486224},
        {10.0, 0.5, 0.9375, 0.26182387082079},
        {10.0, 0.5, 0.9990234375, 0.8901987140103782},
        {0.5, 23.0, 0.0009765625, 0.16699624268892627},
        {0.5, 23.0, 0.125, 0.9863030383083902},
        {0.5, 23.0, 0.5, 0.9999999806629802},
        {98.5, 0.5, 0.125, 6.737159855620516e-91},
        {98.5, 0.5, 0.5, 1.7826263045540967e-31},
        {98.5, 0.5, 0.9375, 0.00036918574638555266},
        {98.5, 0.5, 0.9990234375, 0.6612663599293874},
        {500.0, 0.5, 0.9375, 9.62176680518511e-16},
        {500.0, 0.5, 0.9990234375, 0.32305172282851696},
        {499.5, 2.0, 0.9375, 3.219298510443024e-13},
        {499.5, 2.0, 0.9990234375, 0.9132573992213493},
        {1000.0, 1000.0, 0.5, 0.5},
        {50.5, 3.5, 0.125, 1.060576238542327e-42},
        {50.5, 3.5, 0.5, 6.920359908011512e-13},
        {50.5, 3.5, 0.9375, 0.4631908321444627},
        {50.5, 3.5, 0.9990234375, 0.9999975989177431},
        {10000.5, 0.5, 0.9990234375, 9.844901138303574e-06},
    };
    for (const Beta &row : table) {
        SCOPED_TRACE(testing::Message() << row.a << ", " << row.b << ", " << row.x);
        expect_close(incomplete_beta(row.a, row.b, row.x), row.value);
    }
}

TEST(IncompleteBeta, ClosedForms)
{
    for (const double x : {1e-12, 0.01, 0.3, 0.5, 0.7, 0.99}) {
        SCOPED_TRACE(x);
        expect_close(incomplete_beta(1.0, 1.0, x), x);
        for (const double a : {0.5, 1.0, 2.5, 40.0}) {
            expect_close(incomplete_beta(a, 1.0, x), std::pow(x, a));
            expect_close(incomplete_beta(1.0, a, x), -std::expm1(a * std::log1p(-x)));
        }
        expect_close(incomplete_beta(0.5, 0.5, x), 2.0 / pi * std::asin(std::sqrt(x)));
        expect_close(incomplete_beta(2.0, 2.0, x), x * x * (3.0 - 2.0 * x));
    }
}

TEST(IncompleteBeta, SymmetricAndBounded)
{
    for (const double a : {0.5, 3.0, 97.5}) {
        EXPECT_EQ(incomplete_beta(a, 2.0, 0.0), 0.0);
        EXPECT_EQ(incomplete_beta(a, 2.0, 1.0), 1.0);
        expect_close(incomplete_beta(a, a, 0.5), 0.5);
        for (const double x : {0.1, 0.4, 0.8}) {
            EXPECT_NEAR(incomplete_beta(a, 2.0, x) + incomplete_beta(2.0, a, 1.0 - x), 1.0, 1e-14);
        }
    }
    const double nan = std::nan("");
    EXPECT_TRUE(std::isnan(incomplete_beta(nan, 1.0, 0.5)));
    EXPECT_TRUE(std::isnan(incomplete_beta(1.0, nan, 0.5)));
    EXPECT_TRUE(std::isnan(incomplete_beta(1.0, 1.0, nan)));
    EXPECT_TRUE(std::isnan(incomplete_beta(1.0, 1.0, 0.5, nan)));
}

TEST(IncompleteBeta, RefusesOtherArguments)
{
    const std::string refusal = "the incomplete beta function takes a > 0, b > 0 and x of 0 to 1";
    EXPECT_EQ(error_text([] { incomplete_beta(0.0, 1.0, 0.5); }), refusal);
    EXPECT_EQ(error_text([] { incomplete_beta(1.0, -1.0, 0.5); }), refusal);
    EXPECT_EQ(error_text([] { incomplete_beta(1.0, 1.0, 1.5); }), refusal);
    EXPECT_EQ(error_text([] { incomplete_beta(1.0, 1.0, 0.5, 0.4); }), refusal);
    EXPECT_EQ(error_text([] { incomplete_beta(1.0, 1.0, -0.5, 1.5); }), refusal);
    const double inf = std::numeric_limits<double>::infinity();
    EXPECT_EQ(error_text([&] { incomplete_beta(inf, 1.0, 0.5); }), refusal);
    EXPECT_EQ(error_text([&] { incomplete_beta(1.0, inf, 0.5); }), refusal);
    // Of the order of the root of the larger one are the terms that it takes.
    EXPECT_NEAR(incomplete_beta(1e7, 1e7, 0.5), 0.5, 1e-8);
    EXPECT_EQ(error_text([] { incomplete_beta(1e15, 1e15, 0.5); }),
              "the incomplete beta function does not converge for a = 1000000000000000.000000, b = "
              "1000000000000000.000000");
}

TEST(StudentsT, ValuesOfEightyDigitArithmetic)
{
    expect_close(t_two_sided(12.706204736432095, 1), 0.04999999999899131);
    expect_close(t_two_sided(2.6870134922422126, 46), 0.010000000000000092);
    expect_close(t_two_sided(-40, 5), 1.8411962171772954e-07);
    expect_close(t_two_sided(8.5, 96), 2.45868458727619e-13);
    expect_close(t_two_sided(0.001, 10), 0.999221783374741);
    expect_close(t_two_sided(150, 30), 1.0603107649198278e-44);
    expect_close(t_two_sided(1e6, 3), 2.2053155816792292e-18);
}

TEST(StudentsT, PercentilesOfTheTables)
{
    // 97.5 and 99.5 %, as printed in textbooks.
    const struct {
        double df;
        double t975;
        double t995;
    } rows[] = {{1, 12.706, 63.657}, {2, 4.303, 9.925},  {5, 2.571, 4.032},
                {10, 2.228, 3.169},  {30, 2.042, 2.750}, {120, 1.980, 2.617}};
    for (const auto &row : rows) {
        EXPECT_NEAR(t_upper_tail(row.t975, row.df), 0.025, 2e-5) << row.df;
        EXPECT_NEAR(t_upper_tail(row.t995, row.df), 0.005, 1e-5) << row.df;
    }
}

TEST(StudentsT, ClosedFormsAndSides)
{
    for (const double t : {-30.0, -1.0, -1e-3, 0.0, 0.5, 2.0, 1e5}) {
        SCOPED_TRACE(t);
        // One degree of freedom is Cauchy's distribution; atan of the reciprocal keeps small tails.
        expect_close(t_two_sided(t, 1), 2.0 / pi * std::atan2(1.0, std::abs(t)));
        const double s = std::sqrt(2.0 + t * t);
        expect_close(t_two_sided(t, 2), 2.0 / (s * (s + std::abs(t))));
        EXPECT_NEAR(t_upper_tail(t, 7) + t_upper_tail(-t, 7), 1.0, 1e-15);
    }
    EXPECT_EQ(t_two_sided(0.0, 9), 1.0);
    EXPECT_EQ(t_upper_tail(0.0, 9), 0.5);
    EXPECT_EQ(t_two_sided(std::numeric_limits<double>::infinity(), 9), 0.0);
    EXPECT_EQ(t_two_sided(1e200, 9), 0.0);
    for (const double df : {0.0, std::numeric_limits<double>::infinity(), std::nan("")}) {
        EXPECT_EQ(error_text([&] { t_two_sided(1.0, df); }),
                  "degrees of freedom are above 0 and finite");
    }
}

TEST(FisherF, ValuesOfEightyDigitArithmetic)
{
    expect_close(f_upper_tail(4.9646, 1, 10), 0.05000005219291377);
    expect_close(f_upper_tail(3.5, 2, 20), 0.04973502207609714);
    expect_close(f_upper_tail(40, 3, 96), 7.371425419303215e-17);
    expect_close(f_upper_tail(0.25, 7, 3), 0.9403691778487974);
    expect_close(f_upper_tail(1, 40, 40), 0.5);
    expect_close(f_upper_tail(12.5, 5, 200), 1.4458277615753172e-10);
}

TEST(FisherF, ClosedFormsAndSides)
{
    for (const double f : {1e-6, 0.5, 3.0, 200.0}) {
        // With two degrees of freedom above.
        expect_close(f_upper_tail(f, 2, 30), std::pow(1.0 + 2.0 * f / 30.0, -15.0));
        expect_close(f_upper_tail(f, 1, 30), t_two_sided(std::sqrt(f), 30));
    }
    EXPECT_EQ(f_upper_tail(0.0, 2, 5), 1.0);
    EXPECT_EQ(f_upper_tail(-1.0, 2, 5), 1.0);
    EXPECT_EQ(f_upper_tail(std::numeric_limits<double>::infinity(), 2, 5), 0.0);
}

} // namespace
