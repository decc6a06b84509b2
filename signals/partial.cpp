// SPDX-License-Identifier: GPL-3.0-or-later
#include "signals/partial.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include <Eigen/Cholesky>

#include "signals/centring.h"
#include "signals/correlation.h"
#include "signals/finite.h"
#include "signals/text.h"

namespace signals
{

namespace
{

using Index = Eigen::Index;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

/// Nodes with a finite variance above 0.
std::vector<Index> nodes_with_variance(const Eigen::MatrixXd &covariance)
{
    std::vector<Index> nodes;
    for (Index i = 0; i < covariance.cols(); ++i) {
        if (std::isfinite(covariance(i, i)) && covariance(i, i) > 0) {
            nodes.push_back(i);
        }
    }
    return nodes;
}

Eigen::MatrixXd spread_out(const Eigen::MatrixXd &values, const std::vector<Index> &nodes,
                           Index size)
{
    Eigen::MatrixXd result = Eigen::MatrixXd::Constant(size, size, nan);
    result(nodes, nodes) = values;
    return result;
}

} // namespace

Shrunk ledoit_wolf(const Eigen::MatrixXd &series)
{
    require_finite(series, "series");
    if (series.rows() == 0) {
        throw Error("shrinkage of series of 0 rows: expected 1 or more");
    }
    const double rows = double(series.rows());
    const double nodes = double(series.cols());
    const Eigen::MatrixXd values = centred(series);
    Shrunk result;
    result.covariance = gram(values) / rows;
    if (series.cols() == 0) {
        return result;
    }
    Eigen::MatrixXd &sample = result.covariance;

    const double mean_variance = sample.trace() / nodes;
    const double norm = sample.squaredNorm();
    const double distance =
        (sample - mean_variance * Eigen::MatrixXd::Identity(sample.rows(), sample.cols()))
            .squaredNorm() /
        nodes;
    if (distance > 0) {
        const double fourth = values.rowwise().squaredNorm().array().square().mean();
        const double noise = std::min(distance, std::max((fourth - norm) / (rows * nodes), 0.0));
        result.shrinkage = noise / distance;
    }
    sample *= 1 - result.shrinkage;
    sample.diagonal().array() += result.shrinkage * mean_variance;
    return result;
}

Eigen::MatrixXd unit_variance(Eigen::MatrixXd series)
{
    series = centred(std::move(series));
    for (auto column : series.colwise()) {
        if (!is_one_value(column)) {
            column /= std::sqrt(column.squaredNorm() / double(column.size()));
        }
    }
    return series;
}

Eigen::MatrixXd partial_of(const Eigen::MatrixXd &covariance)
{
    const Eigen::MatrixXd scaled = correlation_of(covariance);
    const std::vector<Index> nodes = nodes_with_variance(covariance);
    const Index count = static_cast<Index>(nodes.size());
    const Eigen::LLT<Eigen::MatrixXd> factor(scaled(nodes, nodes));
    if (count > 0 && (factor.info() != Eigen::Success || !(factor.rcond() > 1e-15))) {
        throw Error("a covariance of " + counted(count, "node") +
                    " cannot be inverted: some series are combinations of others; shrinkage "
                    "(--shrinkage ledoit-wolf) helps");
    }
    const Eigen::MatrixXd inverse = factor.solve(Eigen::MatrixXd::Identity(count, count));
    Eigen::MatrixXd partial = -correlation_of((inverse + inverse.transpose()) / 2);
    partial.diagonal().setOnes();
    return spread_out(partial, nodes, covariance.cols());
}

Eigen::MatrixXd partial_correlation(const Eigen::MatrixXd &series, double nu)
{
    const Eigen::MatrixXd sums = covariance(series, 1);
    const double nodes = double(nodes_with_variance(sums).size());
    if (!(nu > nodes)) {
        throw Error("partial correlation of " + number(nodes) + " nodes with " + number(nu) +
                    " degrees of freedom: expected more of these than nodes; shrinkage "
                    "(--shrinkage ledoit-wolf) needs no more");
    }
    return partial_of(sums);
}

ShrunkPartial shrunk_partial_correlation(const Eigen::MatrixXd &series)
{
    // Nodes without values take no part in the shrinkage.
    const std::vector<Index> nodes = nodes_with_variance(covariance(series, 1));
    const Shrunk shrunk = ledoit_wolf(unit_variance(series(Eigen::all, nodes)));
    return {spread_out(partial_of(shrunk.covariance), nodes, series.cols()), shrunk.shrinkage};
}

double partial_standard_error(double nu, Index nodes)
{
    return nu > double(nodes) ? 1 / std::sqrt(nu - double(nodes)) : nan;
}

} // namespace signals
