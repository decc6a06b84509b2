// SPDX-License-Identifier: GPL-3.0-or-later
#include "statistics/fisher_z.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "statistics/error.h"

namespace statistics
{

std::vector<Index> fisher_z(Eigen::Ref<Eigen::RowVectorXd> edges)
{
    for (Index e = 0; e < edges.size(); ++e) {
        if (!(std::abs(edges(e)) <= 1.0)) {
            throw Error(
                "edge " + std::to_string(e) + " is " + std::to_string(edges(e)) +
                ", a correlation lies between -1 and 1: Fisher's z is for correlations only");
        }
    }
    std::vector<Index> clipped;
    for (Index e = 0; e < edges.size(); ++e) {
        if (std::abs(edges(e)) > largest_correlation) {
            clipped.push_back(e);
        }
        edges(e) = std::atanh(std::clamp(edges(e), -largest_correlation, largest_correlation));
    }
    return clipped;
}

bool looks_like_correlations(const Eigen::MatrixXd &matrix)
{
    if (matrix.rows() != matrix.cols() || matrix.array().isNaN().all()) {
        return false;
    }
    for (Index j = 0; j < matrix.cols(); ++j) {
        for (Index i = 0; i <= j; ++i) {
            const double upper = matrix(i, j);
            const double lower = matrix(j, i);
            if (std::isnan(upper) && std::isnan(lower)) {
                continue;
            }
            // Written so that a NaN on one side only fails.
            if (!(std::abs(upper - lower) <= 1e-6) || !(std::abs(upper) <= 1.0) ||
                !(std::abs(lower) <= 1.0) || (i == j && std::abs(upper - 1.0) > 1e-6)) {
                return false;
            }
        }
    }
    return true;
}

} // namespace statistics
