// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include <Eigen/Core>

namespace statistics
{

struct TangentSpace {
    Eigen::MatrixXd mean;                 ///< G, nodes x nodes
    std::vector<Eigen::MatrixXd> tangent; ///< T_i, nodes x nodes, symmetric; one per subject
    int steps = 0;
    double rest = 0.0; ///< ||L||_F / N^2 at the end
};

/// The covariances of a group as differences from their geometric mean, where they can be averaged
/// and compared like any numbers (no Fisher z):
///
///     T_i = log(G^-1/2 C_i G^-1/2)
///
/// G starts at the mean of all C_i; in each step L = mean of log(G^-1/2 C_i G^-1/2) and
/// G <- G^1/2 exp(h L) G^1/2 with h = 1, halved when ||L||_F rises, until ||L||_F / N^2 < 1e-7.
///
/// G is of all subjects given, so that none of them is independent of the others afterwards.
///
/// Sources: Varoquaux et al. 2010, MICCAI, LNCS 6361:200, doi:10.1007/978-3-642-15705-9_25;
/// Fletcher and Joshi 2007, Signal Process 87:250, doi:10.1016/j.sigpro.2005.12.018.
///
/// \param covariances of the same nodes, symmetric and positive definite (shrinkage makes them so).
/// \throws Error if there are none, they differ in size, one is not symmetric, finite or positive
///         definite (by number), or 30 steps were not enough.
TangentSpace tangent_space(const std::vector<Eigen::MatrixXd> &covariances);

} // namespace statistics
