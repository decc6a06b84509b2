// SPDX-License-Identifier: GPL-3.0-or-later
#include "signals/regression.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include <Eigen/QR>
#include <Eigen/SVD>

#include "signals/centring.h"
#include "signals/text.h"

namespace signals
{

namespace
{

using Index = Eigen::Index;

constexpr double epsilon = std::numeric_limits<double>::epsilon();

} // namespace

Basis pivoted_basis(const Eigen::MatrixXd &design, double tolerance)
{
    if (design.size() == 0) {
        return {Eigen::MatrixXd(design.rows(), 0), {}};
    }
    const Eigen::ColPivHouseholderQR<Eigen::MatrixXd> qr(design);
    const Index largest_rank = std::min(design.rows(), design.cols());
    // Pivoting makes them descend.
    Index rank = 0;
    while (rank < largest_rank && std::abs(qr.matrixR()(rank, rank)) > tolerance) {
        ++rank;
    }
    Basis basis;
    basis.columns = Eigen::MatrixXd::Identity(design.rows(), rank);
    basis.columns.applyOnTheLeft(qr.householderQ().setLength(rank));
    const auto &order = qr.colsPermutation().indices();
    basis.dependent.assign(order.begin() + rank, order.end());
    std::sort(basis.dependent.begin(), basis.dependent.end());
    return basis;
}

Basis singular_basis(const Eigen::MatrixXd &design)
{
    if (design.size() == 0) {
        return {Eigen::MatrixXd(design.rows(), 0), {}};
    }
    const Eigen::BDCSVD<Eigen::MatrixXd> svd(design, Eigen::ComputeThinU);
    const Eigen::ArrayXd values = svd.singularValues();
    const double least = values[0] * epsilon * double(std::max(design.rows(), design.cols()));
    const Index rank = (values > least).count();
    return {svd.matrixU().leftCols(rank), {}};
}

Eigen::MatrixXd residuals(Eigen::MatrixXd series, const Basis &basis)
{
    if (series.rows() != basis.columns.rows()) {
        throw Error("regression of series of " + counted(series.rows(), "row") +
                    " on a design of " + counted(basis.columns.rows(), "row") +
                    ": expected as many");
    }
    const Eigen::MatrixXd weights = basis.columns.transpose() * series;
    series.noalias() -= basis.columns * weights;
    return series;
}

Eigen::MatrixXd zscored(Eigen::MatrixXd series)
{
    series = centred(std::move(series));
    const double divisor = double(std::max<Index>(series.rows() - 1, 1));
    for (auto column : series.colwise()) {
        const double deviation = std::sqrt(column.squaredNorm() / divisor);
        if (deviation >= epsilon) {
            column /= deviation;
        }
    }
    return series;
}

} // namespace signals
