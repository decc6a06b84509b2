// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <Eigen/Core>

#include <vector>

class QString;

/// @file
/// The dump files of a compute, written into the `dumpFolder` of `PluginSettings` while its
/// `dumpAll` is set; else nothing happens. A file that can't be written is left out silently.

/// "connectivity_ts.csv": the node matrix, nodes x volumes.
void dumpTimeseries(const Eigen::MatrixXf &timeseries);

/// One file per slice, named by `nameTemplate`, which begins with a slash and holds "%1" for the
/// slice's number from 0: "/correlation_mtx_%1.csv" and its like.
void dumpMatrices(const QString &nameTemplate, const std::vector<Eigen::MatrixXf> &matrices);

namespace dump_names
{
extern const QString connectivity;         ///< as the measure gave it
extern const QString treatmentPass1;       ///< after the sign treatment
extern const QString treatmentPass2;       ///< after the library's treatment
extern const QString minimumSpanningTrees; ///< weights of the trees
} // namespace dump_names
