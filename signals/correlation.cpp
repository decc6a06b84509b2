// SPDX-License-Identifier: GPL-3.0-or-later
#include "signals/correlation.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <vector>

#include "signals/centring.h"
#include "signals/text.h"

namespace signals
{

namespace
{

using Index = Eigen::Index;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double largest_r = 1 - 1e-7;

/// Without the rounding that leads beyond; NaN stays, standing first in both comparisons.
double within_one(double r)
{
    return std::min(std::max(r, -1.0), 1.0);
}

Eigen::VectorXd ranks(const Eigen::VectorXd &values)
{
    Eigen::VectorXd result(values.size());
    if (!values.allFinite()) {
        return result.setConstant(nan);
    }
    std::vector<Index> order(values.size());
    std::iota(order.begin(), order.end(), Index(0));
    std::sort(order.begin(), order.end(), [&](Index a, Index b) { return values[a] < values[b]; });
    for (std::size_t first = 0; first < order.size();) {
        std::size_t last = first;
        while (last + 1 < order.size() && values[order[last + 1]] == values[order[first]]) {
            ++last;
        }
        for (std::size_t i = first; i <= last; ++i) {
            result[order[i]] = double(first + last) / 2;
        }
        first = last + 1;
    }
    return result;
}

} // namespace

Eigen::MatrixXd pearson(const Eigen::MatrixXd &series)
{
    Eigen::MatrixXd directions = centred(series);
    for (auto column : directions.colwise()) {
        // 0/0 for a constant series: a correlation that is none.
        column /= column.stableNorm();
    }
    Eigen::MatrixXd r = gram(directions).unaryExpr(&within_one);
    if (series.rows() == 0) {
        r.setConstant(nan);
    }
    for (Index i = 0; i < r.cols(); ++i) {
        r(i, i) = std::isnan(r(i, i)) ? nan : 1;
    }
    return r;
}

Eigen::MatrixXd spearman(const Eigen::MatrixXd &series)
{
    Eigen::MatrixXd ranked(series.rows(), series.cols());
    for (Index i = 0; i < series.cols(); ++i) {
        ranked.col(i) = ranks(series.col(i));
    }
    return pearson(ranked);
}

FisherZ fisher_z(const Eigen::MatrixXd &r)
{
    FisherZ result;
    // NaN stays: it is not above the limit.
    result.z = r.unaryExpr([](double value) {
        return std::atanh(std::abs(value) > largest_r ? std::copysign(largest_r, value) : value);
    });
    for (Index j = 0; j < r.cols(); ++j) {
        for (Index i = 0; i < std::min(j, r.rows()); ++i) {
            result.clipped += std::abs(r(i, j)) > largest_r ? 1 : 0;
        }
    }
    return result;
}

Eigen::MatrixXd covariance(const Eigen::MatrixXd &series, double nu)
{
    if (!(nu > 0)) {
        throw Error("covariance with " + number(nu) + " degrees of freedom: expected more than 0");
    }
    return gram(centred(series)) / nu;
}

Eigen::MatrixXd correlation_of(const Eigen::MatrixXd &covariance)
{
    if (covariance.rows() != covariance.cols()) {
        throw Error("a matrix of " + counted(covariance.rows(), "row") + " and " +
                    counted(covariance.cols(), "column") + ": expected as many");
    }
    const Eigen::ArrayXd deviations = covariance.diagonal().array().unaryExpr(
        [](double variance) { return variance > 0 ? std::sqrt(variance) : nan; });
    Eigen::MatrixXd r(covariance.rows(), covariance.cols());
    for (Index j = 0; j < r.cols(); ++j) {
        for (Index i = 0; i < j; ++i) {
            // In two steps, since the product of two small deviations may vanish.
            r(i, j) = within_one(covariance(i, j) / deviations[i] / deviations[j]);
            r(j, i) = r(i, j);
        }
        r(j, j) = std::isnan(deviations[j]) ? nan : 1;
    }
    return r;
}

} // namespace signals
