// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include <Eigen/Core>

#include "statistics/edges.h"

namespace statistics
{

/// The largest correlation in absolute value that keeps its own z; beyond it the z of this value
/// (8.4) stands.
constexpr double largest_correlation = 1.0 - 1e-7;

/// Replaces correlations by their Fisher z, in place:
///
///     z = atanh(r) = log((1 + r) / (1 - r)) / 2,   r clipped to +-(1 - 1e-7)
///
/// Source: Fisher 1915, Biometrika 10:507, doi:10.2307/2331838.
///
/// \param edges the edges of one subject (not the diagonal of its matrix).
/// \return the edges that were clipped, by number from 0.
/// \throws Error if a value is not finite or lies outside -1 to 1; the values are then unchanged.
std::vector<Index> fisher_z(Eigen::Ref<Eigen::RowVectorXd> edges);

/// Whether a matrix looks like one of correlations: symmetric, ones on its diagonal, and nothing
/// outside -1 to 1. Entries that are not a number count as none, as long as another is there. What
/// decides where nothing says what the matrix holds.
bool looks_like_correlations(const Eigen::MatrixXd &matrix);

} // namespace statistics
