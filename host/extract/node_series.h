// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/extract/node_map.h"
#include "host/files/nifti_header.h"
#include "host/files/progress.h"

#include <Eigen/Core>

namespace corvane
{

/// The mean series of each node, and what they are made of.
struct NodeSeries {
    Eigen::MatrixXd values;   ///< volumes x nodes; NaN for a node without a voxel that counts
    std::vector<qint64> used; ///< voxels that count, for each node

    /// Voxels used / Node::wholeVoxels, 0 for a node without voxels.
    std::vector<double> coverage(const std::vector<Node> &nodes) const;
};

/// Reads a run once from its first sample to its last. A node's value is the mean, in double
/// precision, of its voxels that count: those of the map without any sample that is not finite,
/// and whose samples are not all equal. Where a voxel turns non-finite behind the first volume the
/// run is read a second time, which is said in `notes`.
///
/// `header` is that of the run a moment ago. Throws InputError, also when it is another one now,
/// and WorkStopped.
NodeSeries readNodeSeries(const QString &path, const NiftiHeader &header, const NodeMap &map,
                          const ProgressWatch &watch, QStringList &notes);

} // namespace corvane
