// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

#include <Eigen/Core>

#include "statistics/contrast.h"

namespace statistics
{

/// A question to a linear model y = M b + noise, as directions in the space of subjects.
///
/// With C the contrast (k rows), A = basis of M (M'M)^-1 C' is what the question is about, and
/// Z = M null(C), at right angles to it, is the reduced model, of which Q is a basis:
///
///     t = sqrt(df) a'e / sqrt(e'e - |Q'e|^2 - (a'e)^2)                      one row
///     F = (|A'e|^2 / k) / ((e'e - |Q'e|^2 - |A'e|^2) / df)                  several rows
///
/// for the residuals e = y - Q Q'y of the reduced model, or any rearrangement of them (for which
/// Q'e is not 0). These are the usual t and F of the full model.
struct Hypothesis {
    std::string name;                 ///< of the contrast
    std::vector<std::string> columns; ///< of the design
    Eigen::MatrixXd design;           ///< M, subjects x columns
    Eigen::MatrixXd contrast;         ///< C, k x columns
    Eigen::MatrixXd tested;           ///< A, subjects x k, orthonormal; of t with the sign of C b
    Eigen::MatrixXd nuisance;         ///< Q, subjects x (columns - k), orthonormal
    /// Whether the reduced model holds the constant. It is the first column of Q then.
    bool has_constant = false;
    /// C b = scale * a'y for one row.
    double estimate_scale = 0.0;
    double df = 0.0; ///< subjects - columns

    Eigen::Index subjects() const { return design.rows(); }
    bool is_f() const { return contrast.rows() > 1; }
};

/// \throws Error naming columns if the design is collinear (a column lies within 1e-9 of its length
///         of the span of those before it), has no degree of freedom left, or holds what is not
///         finite; if the contrast has another number of columns, or its rows depend on each other.
Hypothesis make_hypothesis(const Eigen::MatrixXd &design, const std::vector<std::string> &columns,
                           const Contrast &contrast);

/// An orthonormal basis of the columns of a matrix, in their order.
/// \throws Error naming the columns that depend on each other.
Eigen::MatrixXd orthonormal_basis(const Eigen::MatrixXd &matrix,
                                  const std::vector<std::string> &columns);

/// Whether the vector of ones lies in the span of the orthonormal columns.
bool spans_constant(const Eigen::MatrixXd &basis);

} // namespace statistics
