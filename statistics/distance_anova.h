// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <Eigen/Core>

#include "statistics/hypothesis.h"
#include "statistics/rearrangements.h"

namespace statistics
{

struct DistanceAnova {
    double f = 0.0;
    double df_tested = 0.0;
    double df_residual = 0.0;
    double r_squared = 0.0; ///< the tested columns' share of the sum of squared distances
    double p = 0.0;
    Eigen::ArrayXd null_f; ///< one for each rearrangement
};

/// Whether distances between subjects follow a design (distance-based analysis of variance).
///
///     G = -J D^2 J / 2, J = I - 11'/N, D^2 the squared distances
///     F = (tr(A'GA) / k) / (tr((I - H)G) / (N - p))
///
/// with A of the hypothesis and H the projection on the whole design. For groups alone this is
///
///     F = ((SST - SSW) / (a - 1)) / (SSW / (N - a))
///     SST = sum over i < j of d^2 / N
///     SSW = sum over groups of (sum over i < j within of d^2) / n_g
///
/// Under a rearrangement the rows and columns of (I - H_Z) G (I - H_Z), the residuals of the
/// reduced model Z, move together, as in Freedman and Lane's method. F has no tabulated
/// distribution: the only p is that of the rearrangements. Groups of unequal spread alone can
/// reject. A residual below 1e-14 of the reduced model's counts as that.
///
/// Sources: Anderson 2001, Austral Ecol 26:32, doi:10.1111/j.1442-9993.2001.01070.pp.x; McArdle and
/// Anderson 2001, Ecology 82:290, doi:10.1890/0012-9658(2001)082[0290:FMMTCD]2.0.CO;2.
///
/// \param distances subjects x subjects. All must be of networks of the same nodes: spectral
///        distances depend on their number.
/// \throws Error if the matrix is not one of distances, or not of the hypothesis' subjects; if the
///         reduced model lacks the constant (distances have no mean to test); if signs were asked
///         for; or if the reduced model leaves no distances.
DistanceAnova distance_anova(const Eigen::MatrixXd &distances, const Hypothesis &hypothesis,
                             const Rearrangements &rearrangements, int threads = 0);

} // namespace statistics
