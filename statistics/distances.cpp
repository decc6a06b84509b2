// SPDX-License-Identifier: GPL-3.0-or-later
#include "statistics/distances.h"

#include <cmath>
#include <string>

#include "statistics/error.h"
#include "statistics/parallel.h"
#include "statistics/text.h"

namespace statistics
{

Eigen::MatrixXd all_distances(Index count, const std::function<double(Index, Index)> &distance,
                              int threads)
{
    Eigen::MatrixXd distances = Eigen::MatrixXd::Zero(count, count);
    for_each_chunk(count, threads, [&](Index i, int) {
        for (Index j = i + 1; j < count; ++j) {
            const double value = distance(i, j);
            if (!(value >= 0.0) || std::isinf(value)) {
                throw Error("the distance of " + std::to_string(i) + " and " + std::to_string(j) +
                            " is " + std::to_string(value) + "; distances are 0 or above");
            }
            distances(i, j) = distances(j, i) = value;
        }
    });
    return distances;
}

void require_distances(const Eigen::MatrixXd &distances)
{
    if (distances.rows() != distances.cols()) {
        throw Error("the distances have " + counted(distances.rows(), "row") + " and " +
                    counted(distances.cols(), "column"));
    }
    if (!distances.allFinite() || (distances.array() < 0.0).any()) {
        throw Error("a distance is negative or no finite number");
    }
    const double largest = distances.size() == 0 ? 0.0 : distances.maxCoeff();
    const Eigen::ArrayXXd differences = (distances - distances.transpose()).array().abs();
    if ((differences > 1e-9 * largest).any() || (distances.diagonal().array() != 0.0).any()) {
        throw Error("the distances are not symmetric, or not 0 on the diagonal");
    }
}

} // namespace statistics
