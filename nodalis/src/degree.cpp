// SPDX-License-Identifier: GPL-3.0-or-later
#include <nodalis/degree.h>

#include "graph.h"

namespace nodalis
{
inline namespace NODALIS_ABI
{

Eigen::ArrayXf degree(const Eigen::MatrixXf &matrix)
{
    const Eigen::MatrixXf weights = detail::conditioned(matrix, "degree");
    return (weights.array() != 0.0F).cast<float>().colwise().sum().transpose();
}

Eigen::ArrayXf strength(const Eigen::MatrixXf &matrix)
{
    const Eigen::MatrixXf weights = detail::conditioned(matrix, "strength");
    return weights.cast<double>().colwise().sum().transpose().cast<float>();
}

} // namespace NODALIS_ABI
} // namespace nodalis
