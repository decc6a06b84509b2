// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/extract/connectome.h"

#include <QByteArray>
#include <QList>
#include <QStringList>

namespace corvane
{

/// Graph measures of each node.
struct NodeMeasures {
    QList<QByteArray> columns; ///< as tables name them
    QStringList names;         ///< of the columns, for people
    Eigen::MatrixXd values;    ///< nodes x columns; NaN for a node without values
    int perNode = 0;           ///< so many columns differ from node to node, the others do not
};

/// The measures of the network of Pearson correlations of the whole run without their signs, of the
/// nodes that have values. Zero threads are one for each processor; they do not change the result.
/// Throws nodalis::Ended when the watch says so.
NodeMeasures nodeMeasures(const Connectome &connectome, int threads = 1,
                          const ProgressWatch &watch = {});

} // namespace corvane
