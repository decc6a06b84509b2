// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include <Eigen/Core>

#include "statistics/edges.h"
#include "statistics/hypothesis.h"

namespace statistics
{

/// Which effects count. An F has no direction: all sides mean the upper tail then.
enum class Sides {
    each,    ///< both directions, each with networks of its own
    both,    ///< both directions; networks mix them
    greater, ///< above 0
    less,    ///< below 0
};

/// A linear model at each edge, without permutations.
struct GlmResult {
    Eigen::ArrayXd estimate;  ///< C b; empty for F
    Eigen::ArrayXd statistic; ///< t or F
    Eigen::ArrayXd p;         ///< of Student's t or of F: two-sided for each and both
    double df = 0.0;          ///< of the denominator, subjects - columns
    double tested = 1.0;      ///< of the numerator, the contrast's rows
    /// Edges with nothing to explain: the same in all subjects, or explained by the columns that
    /// the question is not about (e'e <= 1e-20 y'y). Their statistic is 0 and their p is 1.
    std::vector<Index> constant_edges;
};

/// t or F of the hypothesis at each edge, as `Hypothesis` defines them. Where the model fits
/// exactly, the residual sum of squares counts as 1e-14 of the reduced model's, so that t and F are
/// finite. O(subjects * columns * edges).
/// \param data subjects x edges, complete; the subjects are those of the hypothesis.
/// \throws Error if the data have other subjects than the hypothesis, or hold what is not finite.
GlmResult glm(const EdgeData &data, const Hypothesis &hypothesis, Sides sides = Sides::each);

namespace detail
{
class EdgeStatistics;

/// The same of residuals that are there already.
GlmResult glm(const EdgeStatistics &statistics, const Hypothesis &hypothesis, Sides sides);
} // namespace detail

} // namespace statistics
