// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include <Eigen/Core>

#include "statistics/edges.h"

namespace statistics
{

/// Intraclass correlations of each edge.
struct Icc {
    Eigen::ArrayXd icc_1_1; ///< one-way random: sessions are no factor
    Eigen::ArrayXd icc_2_1; ///< two-way random: absolute agreement
    Eigen::ArrayXd icc_3_1; ///< two-way mixed: consistency, differences between sessions left out
};

/// How well single measurements repeat, over n subjects with k sessions each:
///
///     MSR = k sum_i (x_i. - x..)^2 / (n - 1)           MSC = n sum_j (x_.j - x..)^2 / (k - 1)
///     MSW = sum_ij (x_ij - x_i.)^2 / (n (k - 1))
///     MSE = sum_ij (x_ij - x_i. - x_.j + x..)^2 / ((n - 1)(k - 1))
///     ICC(1,1) = (MSR - MSW) / (MSR + (k - 1) MSW)
///     ICC(2,1) = (MSR - MSE) / (MSR + (k - 1) MSE + k (MSC - MSE) / n)
///     ICC(3,1) = (MSR - MSE) / (MSR + (k - 1) MSE)
///
/// At most 1; negative values stay as they are. NaN where 0 is divided by 0, as for an edge that is
/// the same in all sessions of all subjects (its sum of squares below 1e-20 of its squares).
///
/// Source: Shrout and Fleiss 1979, Psychol Bull 86:420, doi:10.1037/0033-2909.86.2.420.
///
/// \param sessions for each session subjects x edges; a subject has the same row in all.
/// \throws Error for fewer than two sessions or subjects, sessions of different size, or what is
/// not
///         finite.
Icc icc(const std::vector<EdgeData> &sessions);

} // namespace statistics
