// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <Eigen/Core>

#include <nodalis/export.h>

namespace nodalis
{
inline namespace NODALIS_ABI
{

/// Clustering coefficient of each node, the geometric mean of the weights in its triangles:
///
///     C_i = 1 / (k_i (k_i - 1)) * sum over j != h of (w_ij w_ih w_jh)^(1/3)
///
/// with k_i the number of neighbours, w > 0. Weights enter as they are, not divided by the
/// largest. A node with fewer than two neighbours has 0, so n <= 2 gives zeros.
///
/// Range 0 to the largest weight; for weights of 0 and 1 it is the share of possible triangles,
/// 0 to 1. Scales with the weights. Up to O(n^3) time, O(n^2) memory; sparse graphs are counted
/// edge by edge, in O(sum of squared degrees).
///
/// Source: Onnela et al. 2005, Phys Rev E 71:065103, doi:10.1103/PhysRevE.71.065103.
///
/// \return one value per node.
/// \throws std::invalid_argument if the matrix is not square.
NODALIS_API Eigen::ArrayXf clustering_coeff(const Eigen::MatrixXf &matrix);

} // namespace NODALIS_ABI
} // namespace nodalis
