// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/painting/node_group.h"

#include <Eigen/Core>
#include <QStringList>
#include <vector>

namespace corvane
{

/// What a picture of a network shows.
struct NetworkPicture {
    QString title;
    QStringList names;                  ///< of the nodes
    Eigen::MatrixXd values;             ///< nodes x nodes; NaN where there is none
    double limit = 1;                   ///< of the scale of colours, above 0
    std::vector<NodeGroup> groups = {}; ///< networks; empty for none
};

} // namespace corvane
