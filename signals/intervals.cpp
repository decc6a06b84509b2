// SPDX-License-Identifier: GPL-3.0-or-later
#include "signals/intervals.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "signals/centring.h"
#include "signals/ledger.h"
#include "signals/text.h"

namespace signals
{

namespace
{

using Index = Eigen::Index;

/// Upper 2.5 % of the normal distribution.
constexpr double normal_quantile = 1.959964;

/// The autocorrelations of each series at the distances 1..largest: distances x series.
Eigen::MatrixXd autocorrelations(const Eigen::MatrixXd &series, const std::vector<Index> &rows,
                                 Index largest)
{
    // On the file's time axis, with zeros in the gaps, which add nothing to any sum.
    const Index span = rows.back() - rows.front() + 1;
    Eigen::MatrixXd spread = Eigen::MatrixXd::Zero(span, series.cols());
    Eigen::VectorXd present = Eigen::VectorXd::Zero(span);
    for (Index row = 0; row < series.rows(); ++row) {
        spread.row(rows[row] - rows.front()) = series.row(row);
        present[rows[row] - rows.front()] = 1;
    }
    const double kept = double(series.rows());
    const Eigen::RowVectorXd squares = spread.colwise().squaredNorm();

    Eigen::MatrixXd result = Eigen::MatrixXd::Zero(largest, series.cols());
    for (Index lag = 1; lag <= std::min(largest, span - 1); ++lag) {
        const Index overlap = span - lag;
        const double pairs = present.head(overlap).dot(present.tail(overlap));
        if (pairs > 0) {
            result.row(lag - 1) = spread.topRows(overlap)
                                      .cwiseProduct(spread.bottomRows(overlap))
                                      .colwise()
                                      .sum()
                                      .cwiseQuotient(squares) *
                                  std::sqrt(kept / pairs);
        }
    }
    return result;
}

} // namespace

CorrelationInterval correlation_interval(double r, double nu)
{
    if (!(nu >= least_degrees)) {
        throw Error("the interval of a correlation with " + number(nu) +
                    " degrees of freedom: expected at least " + number(least_degrees));
    }
    if (std::abs(r) > 1) {
        throw Error("a correlation of " + number(r) + ": expected -1 to 1");
    }
    CorrelationInterval interval{};
    interval.z = std::atanh(r);
    interval.standard_error = 1 / std::sqrt(nu - 2);
    interval.low = std::tanh(interval.z - normal_quantile * interval.standard_error);
    interval.high = std::tanh(interval.z + normal_quantile * interval.standard_error);
    interval.t_degrees = nu - 1;
    interval.t = r * std::sqrt((nu - 1) / (1 - r * r));
    return interval;
}

Eigen::MatrixXd serial_degrees(const Eigen::MatrixXd &series, const std::vector<Index> &rows,
                               double nu)
{
    if (series.rows() != static_cast<Index>(rows.size())) {
        throw Error("series of " + counted(series.rows(), "row") + " with " +
                    counted(static_cast<Index>(rows.size()), "volume number") +
                    ": expected as many");
    }
    if (rows.empty()) {
        return Eigen::MatrixXd::Constant(series.cols(), series.cols(),
                                         std::numeric_limits<double>::quiet_NaN());
    }
    const Eigen::MatrixXd a = autocorrelations(centred(series), rows, series.rows() / 5);
    return gram(a).unaryExpr([nu](double product) {
        return std::isnan(product) ? product : nu / std::max(1.0, 1 + 2 * product);
    });
}

double degrees_of_part(double nu, double part, double kept)
{
    return nu * part / kept;
}

} // namespace signals
