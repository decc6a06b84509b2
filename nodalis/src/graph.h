// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <Eigen/Core>

namespace nodalis::detail
{

/// Raises std::invalid_argument, naming \p function and both numbers, unless \p matrix is square.
void require_square(const Eigen::MatrixXf &matrix, const char *function);

/// nodalis::treatment() without the check.
void condition(Eigen::MatrixXf &matrix);

/// A conditioned copy of \p matrix, after the check of require_square().
Eigen::MatrixXf conditioned(const Eigen::MatrixXf &matrix, const char *function);

} // namespace nodalis::detail
