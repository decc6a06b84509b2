// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <tuple>

#include <Eigen/Core>

#include <nodalis/export.h>

namespace nodalis
{
inline namespace NODALIS_ABI
{
namespace mst
{

/// Minimum spanning tree of a connected graph, or the forest of one tree per component: the
/// shortest connections that join all nodes without a cycle. n - components edges.
///
/// Entries are connection strengths unless \p weights_are_lengths says otherwise; the strongest
/// connection is the shortest. Edges are compared by their weights themselves, never by 1/w or
/// 1 - w, which would make unequal weights equal.
///
/// Ties: edges rank by (w descending, i ascending, j ascending) with i < j, for lengths by
/// (w ascending, i ascending, j ascending). The tree is the one that Kruskal's method builds in
/// that order, so that it is unique and does not depend on the platform.
///
/// An entry w <= 0 is no edge, in either meaning. Isolated nodes have empty rows; n <= 1 and a
/// graph without edges give zeros. Scaling all weights by a positive factor keeps the tree.
/// O(n^2) time and memory.
///
/// Source: Kruskal 1956, Proc Am Math Soc 7:48, doi:10.1090/S0002-9939-1956-0078686-7; on brain
/// networks Stam et al. 2014, Int J Psychophysiol 92:129, doi:10.1016/j.ijpsycho.2014.04.001.
///
/// \param weights_are_lengths false: entries are strengths, the tree has the largest total;
///        true: entries are lengths, it has the smallest.
/// \param mirrored true fills both triangles of the results; false only the one above the
///        diagonal (i < j).
/// \return two n x n matrices: the weights of the tree's edges and 0 elsewhere; 1 for the tree's
///         edges and 0 elsewhere.
/// \throws std::invalid_argument if the matrix is not square.
NODALIS_API std::tuple<Eigen::MatrixXf, Eigen::MatrixXi>
minimum_spanning_tree(const Eigen::MatrixXf &matrix, bool weights_are_lengths, bool mirrored);

} // namespace mst
} // namespace NODALIS_ABI
} // namespace nodalis
