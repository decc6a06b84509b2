// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <Eigen/Core>

#include <nodalis/export.h>

namespace nodalis
{
inline namespace NODALIS_ABI
{

/// Conditions a raw matrix in place, so that it is a graph's weight matrix.
///
/// In this order: entries that are not finite become 0, the diagonal becomes 0, and
/// w_ij = w_ji = (w_ij + w_ji) / 2, rounded once to single precision. Signs and scale are kept.
/// A NaN on one side only therefore counts as 0 in the mean.
///
/// The size stays; applying it twice changes nothing; n = 0 and n = 1 are allowed. O(n^2).
///
/// Source: the weight clean-up described by Rubinov and Sporns 2010, NeuroImage 52:1059,
/// doi:10.1016/j.neuroimage.2009.10.003.
///
/// \throws std::invalid_argument if the matrix is not square; it is then left as it was.
NODALIS_API void treatment(Eigen::MatrixXf &matrix);

} // namespace NODALIS_ABI
} // namespace nodalis
