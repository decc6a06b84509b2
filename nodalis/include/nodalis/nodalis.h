// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// \file
/// Nodalis: measures of weighted undirected graphs on Eigen matrices.
///
/// What holds for every measure:
/// - A graph is a square matrix W of n nodes; w_ij is the weight of the connection of i and j.
///   No measure rescales W.
/// - W is read as nodalis::treatment() would leave it: non-finite entries are no edge, the
///   diagonal is ignored, and w_ij and w_ji are averaged where they differ. Except for treatment()
///   itself the argument stays as it is.
/// - An edge of degree(), strength(), eigenvector_centrality() and spectral_euclidean() is w != 0;
///   of all others w > 0: they see the positive part of signed input only.
/// - Results are single precision, computed in double precision. A value beyond the range of a
///   float is infinite.
/// - Results depend neither on the number of threads nor on the processor. The functions hold no
///   state: calls from several threads at once are safe.
/// - n = 0 is a graph without nodes: vectors and matrices are empty, numbers are 0.
/// - A matrix that is not square raises std::invalid_argument with both numbers in its text;
///   a lack of memory raises std::bad_alloc.

#include <nodalis/centrality.h>
#include <nodalis/clustering.h>
#include <nodalis/csv.h>
#include <nodalis/degree.h>
#include <nodalis/distances.h>
#include <nodalis/efficiency.h>
#include <nodalis/effort.h>
#include <nodalis/mst.h>
#include <nodalis/treatment.h>
#include <nodalis/version.h>
