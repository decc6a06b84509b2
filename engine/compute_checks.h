// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <Eigen/Core>
#include <QStringList>

#include <vector>

class Subject;

/// @file
/// What of a compute's input gives a result without meaning. The measures report nothing; these
/// functions find it in what goes into them.

/// Why the correlations of a node are not defined.
enum class NodeFault {
    None,
    Empty,     ///< its VOI has no voxels: zeros
    Constant,  ///< the same value in every volume
    NotFinite, ///< a value that is NaN or infinite
};

/// The fault of each row of `timeseries`, the node matrix (nodes x volumes) of the subject's seeds,
/// over the whole run.
std::vector<NodeFault> nodeFaults(const Subject &subject, const Eigen::MatrixXf &timeseries);

/// What the user of this compute should know, one sentence each with names and numbers: nodes with
/// a fault, over the run or in an interval; intervals that the end of the run cuts or leaves
/// nothing of; for partial correlation, too few volumes for the number of nodes. Empty when all is
/// well, and without a run. Intervals count from 1 in the order of their starts; those of events
/// are single volumes by design and not told. `names` are those of the nodes.
QStringList computeWarnings(const Subject &subject, const Eigen::MatrixXf &timeseries,
                            const QStringList &names);
