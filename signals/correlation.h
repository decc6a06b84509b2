// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <Eigen/Core>

#include "signals/error.h"

/// \file
/// Measures of pairs of series. Series are rows x series; a result is series x series, symmetric.
/// A series that is constant or holds a NaN has NaN in its row and column, the diagonal included;
/// so have all in fewer than two rows.

namespace signals
{

/// Pearson's correlation, signed, diagonal exactly 1, within -1 to 1.
Eigen::MatrixXd pearson(const Eigen::MatrixXd &series);

/// Spearman's: Pearson's of the ranks; equal values share their mean rank.
/// Source: Spearman 1904, Am J Psychol 15:72, doi:10.2307/1412159.
Eigen::MatrixXd spearman(const Eigen::MatrixXd &series);

struct FisherZ {
    Eigen::MatrixXd z;
    /// Pairs i < j whose correlation was clipped.
    Eigen::Index clipped = 0;
};

/// atanh r with r clipped to -+(1 - 1e-7), so that every entry, the diagonal too, is finite where r
/// is. Source: Fisher 1915, Biometrika 10:507, doi:10.1093/biomet/10.4.507.
FisherZ fisher_z(const Eigen::MatrixXd &r);

/// sum (x - m_x)(y - m_y) / nu, nu the degrees of freedom that the design left.
/// \throws Error if nu is not above 0.
Eigen::MatrixXd covariance(const Eigen::MatrixXd &series, double nu);

/// C_ij / sqrt(C_ii C_jj), diagonal exactly 1, clipped to -1 to 1; NaN where a variance is not
/// above 0. Of a matrix that is not symmetric the upper half counts. \throws Error if the matrix is
/// not square.
Eigen::MatrixXd correlation_of(const Eigen::MatrixXd &covariance);

} // namespace signals
