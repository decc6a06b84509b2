// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>

#include <Eigen/Core>

namespace nodalis::detail
{

/// Raises std::invalid_argument, naming \p function and both numbers, unless \p matrix is square.
void require_square(const Eigen::MatrixXf &matrix, const char *function);

/// nodalis::treatment() without the check.
void condition(Eigen::MatrixXf &matrix);

/// A conditioned copy of \p matrix, after the check of require_square().
Eigen::MatrixXf conditioned(const Eigen::MatrixXf &matrix, const char *function);

inline float finite_or_zero(float weight)
{
    return weight - weight == 0.0F ? weight : 0.0F;
}

/// Calls \p visit(i, j, w_ij) for all i < j with the conditioned weights of a raw square matrix.
template <typename Visit>
void for_each_weight(const Eigen::MatrixXf &matrix, Visit visit)
{
    const Eigen::Index n = matrix.rows();
    const float *const raw = matrix.data();
    // A tile and its mirror image fit the first cache together.
    constexpr Eigen::Index tile = 32;
    for (Eigen::Index j0 = 0; j0 < n; j0 += tile) {
        for (Eigen::Index i0 = 0; i0 <= j0; i0 += tile) {
            for (Eigen::Index j = j0; j < std::min(j0 + tile, n); ++j) {
                for (Eigen::Index i = i0; i < std::min(i0 + tile, j); ++i) {
                    const double upper = finite_or_zero(raw[j * n + i]);
                    const double lower = finite_or_zero(raw[i * n + j]);
                    // Rounded once; a sum of two floats cannot overflow a double.
                    visit(i, j, static_cast<float>((upper + lower) * 0.5));
                }
            }
        }
    }
}

} // namespace nodalis::detail
