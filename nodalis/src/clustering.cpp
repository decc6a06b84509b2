// SPDX-License-Identifier: GPL-3.0-or-later
#include <nodalis/clustering.h>

#include <cmath>

#include "graph.h"

namespace nodalis
{
inline namespace NODALIS_ABI
{

Eigen::ArrayXf clustering_coeff(const Eigen::MatrixXf &matrix)
{
    const Eigen::MatrixXf weights = detail::conditioned(matrix, "clustering_coeff");
    const Eigen::MatrixXd roots =
        weights.unaryExpr([](float w) { return w > 0.0F ? std::cbrt(double{w}) : 0.0; });
    const Eigen::ArrayXd triangles = (roots * roots).cwiseProduct(roots).colwise().sum();
    const Eigen::ArrayXd degrees = (roots.array() > 0.0).cast<double>().colwise().sum();
    return (degrees > 1.0).select(triangles / (degrees * (degrees - 1.0)), 0.0).cast<float>();
}

} // namespace NODALIS_ABI
} // namespace nodalis
