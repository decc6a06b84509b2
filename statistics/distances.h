// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

#include <Eigen/Core>

#include "statistics/edges.h"

namespace statistics
{

/// The symmetric matrix of the distances of all pairs, 0 on the diagonal. `distance(i, j)` is asked
/// once for each pair i < j, on up to `threads` threads at a time (0: one for each processor).
/// \throws Error if a distance is negative or not finite.
Eigen::MatrixXd all_distances(Index count, const std::function<double(Index, Index)> &distance,
                              int threads = 1);

/// \throws Error unless the matrix is square, symmetric (within 1e-9 of its largest entry), finite,
///         nowhere negative and 0 on the diagonal.
void require_distances(const Eigen::MatrixXd &distances);

} // namespace statistics
