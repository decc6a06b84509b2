// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <Eigen/Core>

#include <nodalis/export.h>

namespace nodalis
{
inline namespace NODALIS_ABI
{

/// Eigenvector centrality of each node: the eigenvector of the largest (most positive) eigenvalue
/// of the weight matrix, with entries >= 0 and unit 2-norm.
///
/// - Where several eigenvectors share the largest eigenvalue, as in a graph of equal components,
///   it is the normalised projection of the vector of ones on their space. Eigenvalues count as
///   shared when double precision cannot tell them apart.
/// - In a disconnected graph only components of the largest eigenvalue have values above 0;
///   isolated nodes have 0 then. A graph without any edge gives zeros, so n = 1 gives 0;
///   a single edge (n = 2, w > 0) gives 1/sqrt(2) twice.
/// - Signed input keeps its negative weights. Its eigenvector can be of mixed sign; the absolute
///   values are given. Should the vector of ones stand at right angles to a shared space, each
///   entry is the length of the node's coordinate vector in it, then normalised.
///
/// Range 0 to 1; entries below 1e-13, the accuracy, are 0. Unchanged by scaling the weights by a
/// positive factor. The error is about 1e-7 as long as the relative gap to the next eigenvalue is
/// above 1e-6. O(n^2) per step with a number of steps that grows as the gap shrinks, at most
/// O(n^3); O(n^2) memory.
///
/// Source: Bonacich 1972, J Math Sociol 2:113, doi:10.1080/0022250X.1972.9989806.
///
/// \return one value per node.
/// \throws std::invalid_argument if the matrix is not square.
NODALIS_API Eigen::ArrayXf eigenvector_centrality(const Eigen::MatrixXf &matrix);

} // namespace NODALIS_ABI
} // namespace nodalis
