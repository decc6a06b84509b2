// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>

#include <Eigen/Core>

namespace nodalis::detail
{

struct EigenPair {
    double value;
    Eigen::VectorXd vector; ///< of unit length
};

/// The residual at which iteration ends, relative to the largest absolute eigenvalue.
constexpr double accuracy = 1e-13;

/// The largest eigenvalue of a symmetric matrix among those whose eigenvectors have a part in
/// \p start, and that part: where several eigenvectors share the value, the projection of \p start
/// on their space.
///
/// Lanczos' method (1950, J Res Natl Bur Stand 45:255), keeping all vectors orthogonal.
/// Nothing if \p most_steps are not enough.
std::optional<EigenPair> leading_pair(const Eigen::MatrixXf &matrix, const Eigen::VectorXd &start,
                                      Eigen::Index most_steps);

} // namespace nodalis::detail
