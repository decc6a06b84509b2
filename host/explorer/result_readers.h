// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/explorer/network_result.h"

/// @file
/// A reader for the files of each command. All throw InputError.

namespace corvane
{

/// Of `Corvane connectome`, be it alone or for a row of a study: `run` is the beginning of its
/// files' names, up to the atlas; empty for the first there is.
NetworkResult readConnectomeResult(const QString &folder, const QString &run);
NetworkResult readComputeResult(const QString &folder);
NetworkResult readGroupResult(const QString &folder);
/// One matrix from a table, as Corvane graph takes it.
NetworkResult readMatrixResult(const QString &path);

/// The beginnings of the names of the runs in a folder of matrices, in the order of names.
QStringList runsIn(const QString &folder);

/// Fills in both halves from the mean of both, NaN where one of them has no value, and a scale of
/// colours: to 1 for correlations, else to the largest value off the diagonal.
ResultMatrix resultMatrix(const QString &name, const QString &measure, ValueKind kind,
                          const Eigen::MatrixXd &values);

} // namespace corvane
