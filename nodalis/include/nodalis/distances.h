// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <Eigen/Core>

#include <nodalis/export.h>

namespace nodalis
{
inline namespace NODALIS_ABI
{
namespace distances
{

/// Spectral distance of two graphs: the Euclidean norm of the difference of their sorted
/// adjacency spectra.
///
/// Both graphs are padded with unconnected nodes to m = max(n_a, n_b, size) first. Each such node
/// is an eigenvalue 0 that takes its place in the sorted order, so that the value depends on the
/// padding where spectra of unequal shape are compared; distances are comparable for one m only.
///
/// For one m it is a pseudometric: symmetric, obeying the triangle inequality, and exactly 0
/// between a graph and itself, and between graphs of equal spectra up to rounding. Negative
/// weights are kept. Two graphs without nodes have distance 0. A negative \p size is no padding.
/// Scales with a common factor of both graphs. O(n^3) time, O(n^2) memory, whatever \p size.
///
/// Source: Wilson and Zhu 2008, Pattern Recognit 41:2833, doi:10.1016/j.patcog.2008.03.011.
///
/// \param a,b the graphs; left as they were.
/// \param size the least number of nodes to compare at.
/// \throws std::invalid_argument if a matrix is not square.
NODALIS_API float spectral_euclidean(Eigen::MatrixXf &a, Eigen::MatrixXf &b, int size);

/// The adjacency spectrum of a graph, as spectral_euclidean() takes it: the eigenvalues of its
/// weights in ascending order, one for each node. O(n^3) time, O(n^2) memory.
///
/// \throws std::invalid_argument if the matrix is not square.
NODALIS_API Eigen::VectorXd spectrum(const Eigen::MatrixXf &matrix);

/// spectral_euclidean() of two graphs by their spectra: the same value, for distances between many
/// graphs in O(n) time for each pair.
///
/// \param a,b of spectrum().
NODALIS_API float between_spectra(const Eigen::VectorXd &a, const Eigen::VectorXd &b, int size);

} // namespace distances
} // namespace NODALIS_ABI
} // namespace nodalis
