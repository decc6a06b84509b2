// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>

#include <Eigen/Core>

#include "statistics/edges.h"

namespace statistics
{

/// Pearson's correlation of two lists. NaN if one of them does not vary, or for fewer than two
/// values.
/// \throws Error if the lists differ in length.
double pearson(const Eigen::ArrayXd &x, const Eigen::ArrayXd &y);

/// The ranks from 1; equal values have the mean of their ranks.
Eigen::ArrayXd average_ranks(const Eigen::ArrayXd &values);

/// Spearman's correlation: Pearson's of the average ranks.
double spearman(const Eigen::ArrayXd &x, const Eigen::ArrayXd &y);

/// The correlation of two maps of the same nodes.
struct MapComparison {
    double pearson = 0.0;
    double spearman = 0.0;
    /// Two-sided, by shuffling the nodes of one map. They ignore that neighbours are alike (spatial
    /// autocorrelation), and are too small.
    double p_pearson = 0.0;
    double p_spearman = 0.0;
    Index nodes = 0; ///< with a value in both maps
};

/// Compares two maps over the nodes that have a number in both. p = (b + 1) / (m + 1), or b / M if
/// all orders are no more than m. `progress`, if there is one, is told now and then how many of
/// both correlations' orders are done; what it throws ends the comparison. \throws Error if the
/// lists differ in length, fewer than 3 nodes are left, or a map does not
///         vary.
MapComparison compare_maps(const Eigen::ArrayXd &x, const Eigen::ArrayXd &y, Index permutations,
                           std::uint64_t seed,
                           const std::function<void(Index done, Index count)> &progress = {});

} // namespace statistics
