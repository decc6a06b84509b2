// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <Eigen/Core>

namespace signals
{

/// X'X, symmetric to the bit; no rows give zeros.
inline Eigen::MatrixXd gram(const Eigen::MatrixXd &columns)
{
    Eigen::MatrixXd products = Eigen::MatrixXd::Zero(columns.cols(), columns.cols());
    products.selfadjointView<Eigen::Lower>().rankUpdate(columns.transpose());
    products.triangularView<Eigen::StrictlyUpper>() = products.transpose();
    return products;
}

} // namespace signals
