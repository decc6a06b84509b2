// SPDX-License-Identifier: GPL-3.0-or-later
#include <nodalis/treatment.h>

#include <algorithm>
#include <stdexcept>
#include <string>

#include "graph.h"

namespace nodalis
{
namespace detail
{
namespace
{

float finite_or_zero(float weight)
{
    return weight - weight == 0.0F ? weight : 0.0F;
}

/// The mean, rounded once; the sum of two floats cannot overflow a double.
float mean(float a, float b)
{
    return static_cast<float>((static_cast<double>(a) + static_cast<double>(b)) * 0.5);
}

} // namespace

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
    const Eigen::Index n = matrix.rows();
    // A tile and its mirror image fit the first cache together.
    constexpr Eigen::Index tile = 32;
    float *const w = matrix.data();
    for (Eigen::Index j0 = 0; j0 < n; j0 += tile) {
        for (Eigen::Index i0 = 0; i0 <= j0; i0 += tile) {
            for (Eigen::Index j = j0; j < std::min(j0 + tile, n); ++j) {
                for (Eigen::Index i = i0; i < std::min(i0 + tile, j); ++i) {
                    float &upper = w[j * n + i];
                    float &lower = w[i * n + j];
                    upper = lower = mean(finite_or_zero(upper), finite_or_zero(lower));
                }
            }
        }
    }
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
