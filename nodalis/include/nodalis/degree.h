// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <Eigen/Core>

#include <nodalis/export.h>

namespace nodalis
{
inline namespace NODALIS_ABI
{

/// Number of connections of each node: k_i = number of j != i with w_ij != 0.
///
/// Negative weights count as well. Two one-sided weights that cancel (w_ij = -w_ji) are no
/// connection. Range 0 to n - 1; an isolated node has 0. Unchanged by any scaling of the
/// weights. O(n^2).
///
/// Source: Rubinov and Sporns 2010, NeuroImage 52:1059, table A1,
/// doi:10.1016/j.neuroimage.2009.10.003.
///
/// \return one value per node.
/// \throws std::invalid_argument if the matrix is not square.
NODALIS_API Eigen::ArrayXf degree(const Eigen::MatrixXf &matrix);

/// Sum of the weights of each node: s_i = sum over j != i of w_ij.
///
/// The plain signed sum: negative weights subtract. An isolated node has 0. Scales with the
/// weights. For weights of 0 and 1 it is the degree. O(n^2).
///
/// Source: Barrat et al. 2004, PNAS 101:3747, doi:10.1073/pnas.0400087101.
///
/// \return one value per node.
/// \throws std::invalid_argument if the matrix is not square.
NODALIS_API Eigen::ArrayXf strength(const Eigen::MatrixXf &matrix);

} // namespace NODALIS_ABI
} // namespace nodalis
