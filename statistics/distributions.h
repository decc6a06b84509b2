// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace statistics
{

/// The regularised incomplete beta function I_x(a, b), by its continued fraction, within 1e-12 of
/// its value (relative), a and b up to about 1e6.
///
/// \param a, b above 0.
/// \param x, y within 0 to 1, y = 1 - x. Given apart, since one of them may be too small to be told
///        from the other.
/// \return NaN for a NaN; 0 where the value lies below the smallest double.
/// \throws Error for other arguments.
///
/// Source: NIST Digital Library of Mathematical Functions, 8.17.22, https://dlmf.nist.gov/8.17; the
/// factor before the fraction by Stirling's series and deviances, after Loader 2000, Fast and
/// accurate computation of binomial probabilities.
double incomplete_beta(double a, double b, double x, double y);
double incomplete_beta(double a, double b, double x);

/// P(T >= t) of Student's t with `df` degrees of freedom.
double t_upper_tail(double t, double df);

/// P(|T| >= |t|) = I_x(df/2, 1/2), x = df / (df + t^2).
double t_two_sided(double t, double df);

/// P(F >= f) = I_x(df2/2, df1/2), x = df2 / (df2 + df1 f). 1 for f <= 0.
double f_upper_tail(double f, double df1, double df2);

} // namespace statistics
