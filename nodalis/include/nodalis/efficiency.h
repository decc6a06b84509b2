// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <Eigen/Core>

#include <nodalis/effort.h>
#include <nodalis/export.h>

namespace nodalis
{
inline namespace NODALIS_ABI
{

/// Local efficiency of each node, how well its neighbours are connected without it:
///
///     E_i = 1 / (k_i (k_i - 1)) * sum over j != h in N_i of (w_ij w_ih)^(1/3) / d_jh(N_i)
///
/// N_i are the neighbours of i (w > 0), k_i their number, and d_jh(N_i) the length of the
/// shortest path from j to h among the neighbours alone, without i, where an edge has the length
/// (1/w)^(1/3). Neighbours that do not reach each other add 0. A node with fewer than two
/// neighbours has 0, so n <= 2 gives zeros.
///
/// Scales with the weights. For weights of 0 and 1 it is the binary local efficiency of Latora
/// and Marchiori 2001, 0 to 1. Paths may not leave the neighbourhood, unlike in some other
/// implementations.
///
/// O(n^2) memory. Time about O(n^3 log n) where nearly all nodes are connected, else
/// O(sum of k_i^3), which is O(n^4) in between.
///
/// Source: Wang et al. 2017, Neural Comput 29:313, doi:10.1162/NECO_a_00914.
///
/// \return one value per node.
/// \throws std::invalid_argument if the matrix is not square.
NODALIS_API Eigen::ArrayXf local_efficiency(const Eigen::MatrixXf &matrix);

/// The same values, on several threads and with progress. Each thread may take O(n^2) memory more.
///
/// \throws Ended when the progress said so.
NODALIS_API Eigen::ArrayXf local_efficiency(const Eigen::MatrixXf &matrix, const Effort &effort);

/// How many lengths of paths local_efficiency() compares with another way, to tell beforehand how
/// long it takes: n^3 are as many as global_efficiency() compares. Time O(n^2 log n).
///
/// \throws std::invalid_argument if the matrix is not square.
NODALIS_API double local_efficiency_relaxations(const Eigen::MatrixXf &matrix);

/// Global efficiency, the mean inverse shortest path length over all pairs of nodes:
///
///     E = 1 / (n (n - 1)) * sum over i != j of 1 / d_ij
///
/// where an edge (w > 0) has the length 1/w. Nodes that do not reach each other, isolated ones
/// among them, add 0. n < 2 gives 0.
///
/// Range 0 to the largest weight; scales with the weights. O(n^3) time, O(n^2) memory.
///
/// Source: Latora and Marchiori 2001, Phys Rev Lett 87:198701,
/// doi:10.1103/PhysRevLett.87.198701.
///
/// \throws std::invalid_argument if the matrix is not square.
NODALIS_API float global_efficiency(const Eigen::MatrixXf &matrix);

/// The same value, on several threads and with progress.
///
/// \throws Ended when the progress said so.
NODALIS_API float global_efficiency(const Eigen::MatrixXf &matrix, const Effort &effort);

/// Global efficiency of each node, the mean inverse shortest path length to all others:
///
///     E_i = 1 / (n - 1) * sum over j != i of 1 / d_ij
///
/// with d as in global_efficiency(), which is its mean. It equals the normalised harmonic
/// centrality with lengths 1/w. An isolated node has 0; n < 2 gives 0.
///
/// Range 0 to the largest weight; scales with the weights. Cost as global_efficiency().
///
/// Source: Achard and Bullmore 2007, PLoS Comput Biol 3:e17, doi:10.1371/journal.pcbi.0030017.
///
/// \return one value per node.
/// \throws std::invalid_argument if the matrix is not square.
NODALIS_API Eigen::ArrayXf nodal_global_efficiency(const Eigen::MatrixXf &matrix);

/// The same values, on several threads and with progress.
///
/// \throws Ended when the progress said so.
NODALIS_API Eigen::ArrayXf nodal_global_efficiency(const Eigen::MatrixXf &matrix,
                                                   const Effort &effort);

} // namespace NODALIS_ABI
} // namespace nodalis
