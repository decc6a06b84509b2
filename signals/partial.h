// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <Eigen/Core>

#include "signals/error.h"

/// \file
/// What two series share beyond all others, and the shrinkage that makes it computable from few
/// volumes.

namespace signals
{

/// A covariance drawn towards a multiple of the identity matrix.
struct Shrunk {
    Eigen::MatrixXd covariance;
    /// s, from 0 (nothing) to 1 (all that is left is mu I).
    double shrinkage = 0;
};

/// Sigma = (1 - s) S + s mu I, of T rows x_t, centred, and N series: S = X'X/T, mu = tr S/N,
/// d2 = ||S - mu I||_F^2/N, b2 = min(d2, ((1/T) sum_t (x_t'x_t)^2 - ||S||_F^2)/(T N)), s = b2/d2,
/// 0 if d2 = 0. Positive definite if s > 0 and mu > 0.
///
/// Source: Ledoit and Wolf 2004, J Multivar Anal 88:365, doi:10.1016/S0047-259X(03)00096-4.
///
/// \param series rows x series, finite. Series in their own units are drawn towards each other's
/// variance: for correlations bring them to \ref unit_variance first.
/// \throws Error if there are no rows, or a value is not finite.
Shrunk ledoit_wolf(const Eigen::MatrixXd &series);

/// Each series centred and divided by its standard deviation (rows); constant ones become 0.
Eigen::MatrixXd unit_variance(Eigen::MatrixXd series);

/// -P_ij/sqrt(P_ii P_jj), diagonal 1, P the inverse of a covariance or correlation matrix.
///
/// Nodes with a variance that is not above 0 or not finite leave before the inversion, and have
/// NaN. Source: Marrelec et al. 2006, NeuroImage 32:228, doi:10.1016/j.neuroimage.2005.12.057.
/// \throws Error if the matrix is not square, or what is left of it is not positive definite.
Eigen::MatrixXd partial_of(const Eigen::MatrixXd &covariance);

/// The partial correlation of series, without shrinkage. nu must be above N, the number of series
/// that are not constant: else the inverse is made of rounding errors.
///
/// \param series rows x series. \param nu degrees of freedom that the design left.
/// \throws Error, naming nu, N and the shrinkage that helps.
Eigen::MatrixXd partial_correlation(const Eigen::MatrixXd &series, double nu);

/// The same of the shrunk covariance of the series at unit variance, for any number of rows from 1.
/// The standard error below does not hold for it.
struct ShrunkPartial {
    Eigen::MatrixXd partial;
    double shrinkage = 0;
};
ShrunkPartial shrunk_partial_correlation(const Eigen::MatrixXd &series);

/// Of atanh of a partial correlation among N series: 1/sqrt(nu - N); NaN if nu is not above N.
double partial_standard_error(double nu, Eigen::Index nodes);

} // namespace signals
