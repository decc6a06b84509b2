// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include <Eigen/Core>

#include "signals/error.h"

/// \file
/// How sure a correlation of cleaned series is.
///
/// The correlation of residuals is a partial correlation: a design of rank p leaves
/// nu = kept - p degrees of freedom, intercept and trend counted.
///
/// Sources: Fisher 1915, Biometrika 10:507, doi:10.1093/biomet/10.4.507, and 1924, Metron 3:329
/// (partial correlation); Bartlett 1935, J R Stat Soc 98:536, doi:10.2307/2342284 (serial
/// correlation); Afyouni, Smith and Nichols 2019, NeuroImage 199:609,
/// doi:10.1016/j.neuroimage.2019.05.011 (in functional MRI).

namespace signals
{

struct CorrelationInterval {
    /// atanh r, and its standard error 1/sqrt(nu - 2).
    double z, standard_error;
    /// tanh(z -+ 1.959964 standard_error): 95 of 100 such intervals hold the true value.
    double low, high;
    /// r sqrt((nu - 1)/(1 - r^2)), Student's t on nu - 1 degrees of freedom if the true value is 0.
    double t, t_degrees;
};

/// \param r within -1 to 1; at -1 and 1 the interval is that point. A NaN gives NaN in all but
/// standard_error and t_degrees.
/// \throws Error below nu = 3, and for an r beyond -1 to 1.
CorrelationInterval correlation_interval(double r, double nu);

/// nu* for every pair of series: nu / max(1, 1 + 2 sum_(l = 1..L) a_x(l) a_y(l)) with
/// L = floor(kept/5).
///
/// a(l) is the autocorrelation of the centred series at a distance of l volumes, over the P(l)
/// pairs of kept volumes so far apart: sum x_t x_(t+l) / sum x_t^2 sqrt(kept/P(l)), 0 where there
/// is no such pair. The root gives each distance in the sum the weight P(l)/kept that it has in
/// the variance of r; without gaps it is close to 1. Two series that change slowly have fewer
/// independent volumes than they have volumes.
///
/// Not for series that went through a band-pass whose degrees of freedom are already those of the
/// band: that is the same correction.
///
/// \param series kept volumes x series. \param rows the kept volumes' numbers, ascending.
/// \return series x series, symmetric; a pair with a constant series has NaN.
/// \throws Error if there is not one number per row.
Eigen::MatrixXd serial_degrees(const Eigen::MatrixXd &series, const std::vector<Eigen::Index> &rows,
                               double nu);

/// Of a window or condition with \p part of \p kept volumes: about nu part/kept.
double degrees_of_part(double nu, double part, double kept);

} // namespace signals
