// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <Eigen/Core>

/// \file
/// Centred series and their products. A series is a column.

namespace signals
{

/// Whether all values of a column are equal; so are none.
template <typename Column>
bool is_one_value(const Column &column)
{
    return column.size() == 0 || (column.array() == column[0]).all();
}

/// Each series minus its mean. One that does not change becomes exactly 0, where a rounded mean
/// would leave it a variance.
inline Eigen::MatrixXd centred(Eigen::MatrixXd series)
{
    for (auto column : series.colwise()) {
        if (is_one_value(column) && column.allFinite()) {
            column.setZero();
        } else {
            column.array() -= column.mean();
        }
    }
    return series;
}

/// X'X, symmetric to the bit; no rows give zeros.
inline Eigen::MatrixXd gram(const Eigen::MatrixXd &columns)
{
    Eigen::MatrixXd products = Eigen::MatrixXd::Zero(columns.cols(), columns.cols());
    if (columns.size() == 0) {
        return products; // whose data Eigen would ask for
    }
    products.selfadjointView<Eigen::Lower>().rankUpdate(columns.transpose());
    products.triangularView<Eigen::StrictlyUpper>() = products.transpose();
    return products;
}

} // namespace signals
