// SPDX-License-Identifier: GPL-3.0-or-later
#include <nodalis/degree.h>

#include "graph.h"

namespace nodalis
{
inline namespace NODALIS_ABI
{

Eigen::ArrayXf degree(const Eigen::MatrixXf &matrix)
{
    detail::require_square(matrix, "degree");
    Eigen::ArrayXi counts = Eigen::ArrayXi::Zero(matrix.rows());
    detail::for_each_weight(matrix, [&](Eigen::Index i, Eigen::Index j, float weight) {
        const int edge = weight != 0.0F ? 1 : 0;
        counts[i] += edge;
        counts[j] += edge;
    });
    return counts.cast<float>();
}

Eigen::ArrayXf strength(const Eigen::MatrixXf &matrix)
{
    detail::require_square(matrix, "strength");
    Eigen::ArrayXd sums = Eigen::ArrayXd::Zero(matrix.rows());
    detail::for_each_weight(matrix, [&](Eigen::Index i, Eigen::Index j, float weight) {
        sums[i] += double{weight};
        sums[j] += double{weight};
    });
    return sums.cast<float>();
}

} // namespace NODALIS_ABI
} // namespace nodalis
