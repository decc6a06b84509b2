// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include <Eigen/Core>

#include "signals/error.h"

/// \file
/// Slow drift of a series: discrete cosines and a straight line.
///
/// Source of the basis: Ahmed, Natarajan and Rao 1974, IEEE Trans Comput C-23:90,
/// doi:10.1109/T-C.1974.223784 (its second type).

namespace signals
{

/// How many cosines a high-pass at \p high_pass Hz removes from \p volumes volumes of \p tr
/// seconds: K = min(n - 1, floor(2 n high_pass tr)). 0 for a high-pass of 0 or an empty run.
Eigen::Index cosine_count(Eigen::Index volumes, double tr, double high_pass);

/// The numbers 1..K of the cosines that a high-pass removes.
std::vector<Eigen::Index> cosines_below(Eigen::Index volumes, double tr, double high_pass);

/// The numbers k of the cosines above a low-pass: K(\p high_pass) < k <= n - 1 and
/// k/(2 n tr) > \p low_pass.
std::vector<Eigen::Index> cosines_above(Eigen::Index volumes, double tr, double high_pass,
                                        double low_pass);

/// Cosine k in volume t: sqrt(2/n) cos(pi/n (t + 0.5) k).
///
/// Over all n volumes they have norm 1, sum 0 and are orthogonal to each other; on a part of the
/// volumes none of that holds. Cosine k has the frequency k/(2 n tr) Hz.
///
/// \return volumes x numbers. \throws Error if a number is not within 1..n - 1.
Eigen::MatrixXd cosines(Eigen::Index volumes, const std::vector<Eigen::Index> &numbers);

/// The series without their means and least-squares lines over the rows; \p series is rows x
/// series. One row gives zeros, none stays as it is.
Eigen::MatrixXd detrended(Eigen::MatrixXd series);

} // namespace signals
