// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include <Eigen/Core>

#include "signals/error.h"

/// \file
/// Least squares by an orthonormal basis of what the columns of a design span: the residual of a
/// series is what is left when its projection on the basis is taken off.

namespace signals
{

/// What a design spans.
struct Basis {
    /// rows x rank, orthonormal columns.
    Eigen::MatrixXd columns;
    /// Columns of the design that the others already span, ascending.
    std::vector<Eigen::Index> dependent;

    Eigen::Index rank() const { return columns.cols(); }
};

/// By QR with column pivoting; a column counts if abs(R_ii) > \p tolerance, an absolute number, so
/// the design's columns are brought to one scale first. A design without rows or columns spans
/// nothing.
///
/// Source: Businger and Golub 1965, Numer Math 7:269, doi:10.1007/BF01436084.
Basis pivoted_basis(const Eigen::MatrixXd &design, double tolerance);

/// By singular values: those above max(rows, columns) x 2.2e-16 of the largest count, as in the
/// minimum-norm solution of the usual numerical library. `dependent` stays empty, since no single
/// column can be blamed.
Basis singular_basis(const Eigen::MatrixXd &design);

/// The residuals of the series, rows x series.
/// \throws Error if the rows of both differ.
Eigen::MatrixXd residuals(Eigen::MatrixXd series, const Basis &basis);

/// Each column centred and divided by its standard deviation (rows - 1); a standard deviation below
/// 2.2e-16 is taken as 1.
Eigen::MatrixXd zscored(Eigen::MatrixXd series);

} // namespace signals
