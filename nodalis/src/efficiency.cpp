// SPDX-License-Identifier: GPL-3.0-or-later
#include <nodalis/efficiency.h>

#include <cmath>
#include <limits>
#include <vector>

#include "graph.h"

namespace nodalis
{
namespace
{

/// Shortest path lengths from edge lengths (infinite where there is no edge), in place.
void floyd_warshall(Eigen::MatrixXd &d)
{
    for (Eigen::Index k = 0; k < d.rows(); ++k) {
        for (Eigen::Index j = 0; j < d.cols(); ++j) {
            d.col(j) = d.col(j).cwiseMin((d.col(k).array() + d(k, j)).matrix());
        }
    }
}

/// Sum over j != i of 1/d_ij for each node i.
Eigen::ArrayXd inverse_lengths(const Eigen::MatrixXf &weights)
{
    Eigen::MatrixXd d = weights.unaryExpr([](float w) {
        return w > 0.0F ? 1.0 / double{w} : std::numeric_limits<double>::infinity();
    });
    floyd_warshall(d);
    d.diagonal().setConstant(std::numeric_limits<double>::infinity());
    return d.cwiseInverse().colwise().sum();
}

double local_efficiency_of(Eigen::Index node, const Eigen::MatrixXd &roots)
{
    std::vector<Eigen::Index> neighbours;
    for (Eigen::Index j = 0; j < roots.rows(); ++j) {
        if (roots(j, node) > 0.0) {
            neighbours.push_back(j);
        }
    }
    const double k = static_cast<double>(neighbours.size());
    if (k < 2.0) {
        return 0.0;
    }
    Eigen::MatrixXd d = roots(neighbours, neighbours).cwiseInverse();
    floyd_warshall(d);
    d.diagonal().setConstant(std::numeric_limits<double>::infinity());
    const Eigen::VectorXd links = roots(neighbours, node);
    return links.dot(d.cwiseInverse() * links) / (k * (k - 1.0));
}

} // namespace

inline namespace NODALIS_ABI
{

Eigen::ArrayXf local_efficiency(const Eigen::MatrixXf &matrix)
{
    const Eigen::MatrixXf weights = detail::conditioned(matrix, "local_efficiency");
    const Eigen::MatrixXd roots =
        weights.unaryExpr([](float w) { return w > 0.0F ? std::cbrt(double{w}) : 0.0; });
    Eigen::ArrayXf result(weights.rows());
    for (Eigen::Index i = 0; i < weights.rows(); ++i) {
        result[i] = static_cast<float>(local_efficiency_of(i, roots));
    }
    return result;
}

float global_efficiency(const Eigen::MatrixXf &matrix)
{
    const Eigen::MatrixXf weights = detail::conditioned(matrix, "global_efficiency");
    const double n = static_cast<double>(weights.rows());
    return n < 2.0 ? 0.0F : static_cast<float>(inverse_lengths(weights).sum() / (n * (n - 1.0)));
}

Eigen::ArrayXf nodal_global_efficiency(const Eigen::MatrixXf &matrix)
{
    const Eigen::MatrixXf weights = detail::conditioned(matrix, "nodal_global_efficiency");
    const double n = static_cast<double>(weights.rows());
    if (n < 2.0) {
        return Eigen::ArrayXf::Zero(weights.rows());
    }
    return (inverse_lengths(weights) / (n - 1.0)).cast<float>();
}

} // namespace NODALIS_ABI
} // namespace nodalis
