// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <Eigen/Core>

#include <functional>

/// @file
/// The two connectivity measures: from one block of node time courses (one row per node, one
/// column per volume) to one square matrix with a row and a column per node. Pure functions in
/// single precision throughout. Neither reports an error: a node without variance, a singular
/// matrix or a block without columns shows itself as NaN or infinity in the result.

using MeasureFunction = std::function<Eigen::MatrixXf(const Eigen::MatrixXf &)>;

/// Is told the share of a measure that is done, ascending, up to 1. What it throws ends the
/// measure.
using MeasureProgress = std::function<void(double share)>;

/// Correlation of every pair of rows: the dot product of the demeaned rows over T * sd_a * sd_b,
/// with the population standard deviation sd = sqrt(mean of squares - square of the mean) of the
/// demeaned row. Every pair is computed from scratch, so that entries (a, b) and (b, a) may differ
/// in the last bit and the diagonal is 1 only up to rounding. A row of zero variance gives a row
/// and a column of NaN.
Eigen::MatrixXf correlationMatrix(const Eigen::MatrixXf &series);

/// The system's partial correlation: with C = correlationMatrix(series) and P its plain inverse,
/// R(i, j) = -(P(i, j) / sqrt(P(i, i) * C(j, j))).
///
/// The second factor is the diagonal of C, not of P. R is therefore not symmetric, its entries are
/// not bounded by 1, and its diagonal is -sqrt(P(i, i)) up to rounding. Any NaN in C spreads to the
/// whole matrix; a singular C is inverted all the same.
Eigen::MatrixXf partialCorrelationMatrix(const Eigen::MatrixXf &series);

/// The same two, bit for bit, and told how far they are. The time grows with the square of the
/// nodes: 5,000 of 300 volumes take minutes.
Eigen::MatrixXf watchedCorrelationMatrix(const Eigen::MatrixXf &series,
                                         const MeasureProgress &progress);
Eigen::MatrixXf watchedPartialCorrelationMatrix(const Eigen::MatrixXf &series,
                                                const MeasureProgress &progress);
