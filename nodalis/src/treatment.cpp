// SPDX-License-Identifier: GPL-3.0-or-later
#include <nodalis/treatment.h>

#include <stdexcept>
#include <string>

#include "graph.h"

namespace nodalis
{
namespace detail
{

void require_square(const Eigen::MatrixXf &matrix, const char *function)
{
    if (matrix.rows() != matrix.cols()) {
        throw std::invalid_argument("nodalis::" + std::string(function) +
                                    ": the matrix has to be square, this one has " +
                                    std::to_string(matrix.rows()) + " rows and " +
                                    std::to_string(matrix.cols()) + " columns");
    }
}

void condition(Eigen::MatrixXf &matrix)
{
    // Both entries of a pair are read before they are written, and not again.
    for_each_weight(matrix, [&](Eigen::Index i, Eigen::Index j, float weight) {
        matrix(i, j) = weight;
        matrix(j, i) = weight;
    });
    matrix.diagonal().setZero();
}

Eigen::MatrixXf conditioned(const Eigen::MatrixXf &matrix, const char *function)
{
    require_square(matrix, function);
    Eigen::MatrixXf weights = matrix;
    condition(weights);
    return weights;
}

} // namespace detail

inline namespace NODALIS_ABI
{

void treatment(Eigen::MatrixXf &matrix)
{
    detail::require_square(matrix, "treatment");
    detail::condition(matrix);
}

} // namespace NODALIS_ABI
} // namespace nodalis
