// SPDX-License-Identifier: GPL-3.0-or-later
#include "statistics/distributions.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "statistics/error.h"

namespace statistics
{
namespace
{

constexpr double pi = 3.14159265358979323846;

/// log Gamma(z) - ((z - 1/2) log z - z + log(2 pi) / 2), the error of Stirling's formula.
double stirling_error(double z)
{
    double below = 0.0;
    while (z < 15.0) {
        below += (z + 0.5) * std::log1p(1.0 / z) - 1.0;
        z += 1.0;
    }
    const double r = 1.0 / (z * z);
    const double series =
        (1.0 / 12.0 -
         r * (1.0 / 360.0 - r * (1.0 / 1260.0 -
                                 r * (1.0 / 1680.0 - r * (1.0 / 1188.0 - r * 691.0 / 360360.0))))) /
        z;
    return series + below;
}

/// x log(x / m) + m - x for x > 0, m > 0, without loss where they are close.
double deviance(double x, double m)
{
    const double d = (x - m) / (x + m);
    if (std::abs(d) > 0.1) {
        return x * std::log(x / m) + m - x;
    }
    // log(x / m) = 2 atanh(d): 2 x (d + d^3/3 + d^5/5 + ...) + m - x, and m - x = -d (x + m).
    double sum = (x - m) * d;
    double power = 2.0 * x * d;
    for (int k = 3; k < 40; k += 2) {
        power *= d * d;
        const double next = sum + power / k;
        if (next == sum) {
            break;
        }
        sum = next;
    }
    return sum;
}

/// x^a y^b / B(a, b), for 0 < x < 1.
double beta_factor(double a, double b, double x, double y)
{
    const double n = a + b;
    const double exponent = stirling_error(n) - stirling_error(a) - stirling_error(b) -
                            deviance(a, n * x) - deviance(b, n * y);
    return std::sqrt(a * b / (2.0 * pi * n)) * std::exp(exponent);
}

/// The continued fraction by Lentz's method; it converges fast for x < (a + 1) / (a + b + 2).
double fraction(double a, double b, double x)
{
    constexpr double tiny = 1e-300;
    constexpr double enough = 2e-16;
    const auto nonzero = [](double value) { return std::abs(value) < tiny ? tiny : value; };
    double c = 1.0;
    double d = 1.0 / nonzero(1.0 - (a + b) * x / (a + 1.0));
    double result = d;
    for (int m = 1; m <= 100000; ++m) {
        const double even = m * (b - m) * x / ((a + 2.0 * m - 1.0) * (a + 2.0 * m));
        d = 1.0 / nonzero(1.0 + even * d);
        c = nonzero(1.0 + even / c);
        result *= d * c;
        const double odd = -(a + m) * (a + b + m) * x / ((a + 2.0 * m) * (a + 2.0 * m + 1.0));
        d = 1.0 / nonzero(1.0 + odd * d);
        c = nonzero(1.0 + odd / c);
        const double change = d * c;
        result *= change;
        if (std::abs(change - 1.0) < enough) {
            return result;
        }
    }
    throw Error("the incomplete beta function does not converge for a = " + std::to_string(a) +
                ", b = " + std::to_string(b));
}

void require_degrees_of_freedom(double df)
{
    if (!(df > 0.0) || std::isinf(df)) {
        throw Error("degrees of freedom are above 0 and finite");
    }
}

} // namespace

double incomplete_beta(double a, double b, double x, double y)
{
    if (std::isnan(a) || std::isnan(b) || std::isnan(x) || std::isnan(y)) {
        return std::numeric_limits<double>::quiet_NaN();
    }
    if (!(a > 0.0 && b > 0.0) || std::isinf(a) || std::isinf(b) || x < 0.0 || y < 0.0 ||
        std::abs(x + y - 1.0) > 1e-15) {
        throw Error("the incomplete beta function takes a > 0, b > 0 and x of 0 to 1");
    }
    if (x == 0.0) {
        return 0.0;
    }
    if (y == 0.0) {
        return 1.0;
    }
    const double factor = beta_factor(a, b, x, y);
    if (x <= (a + 1.0) / (a + b + 2.0)) {
        return std::min(1.0, factor * fraction(a, b, x) / a);
    }
    return std::max(0.0, 1.0 - factor * fraction(b, a, y) / b);
}

double incomplete_beta(double a, double b, double x)
{
    return incomplete_beta(a, b, x, 1.0 - x);
}

double t_two_sided(double t, double df)
{
    require_degrees_of_freedom(df);
    const double square = t * t;
    return incomplete_beta(df / 2.0, 0.5, 1.0 / (1.0 + square / df), 1.0 / (1.0 + df / square));
}

double t_upper_tail(double t, double df)
{
    const double half = t_two_sided(t, df) / 2.0;
    return t < 0.0 ? 1.0 - half : half;
}

double f_upper_tail(double f, double df1, double df2)
{
    require_degrees_of_freedom(df1);
    require_degrees_of_freedom(df2);
    if (f <= 0.0) {
        return 1.0;
    }
    const double ratio = df1 * f / df2;
    return incomplete_beta(df2 / 2.0, df1 / 2.0, 1.0 / (1.0 + ratio), 1.0 / (1.0 + 1.0 / ratio));
}

} // namespace statistics
