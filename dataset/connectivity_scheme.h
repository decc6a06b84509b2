// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QVector>

/// What is connected with what: the configuration of one row of the dataset.
struct ConnectivityScheme {
    int kind = 1;          ///< 1 seed to seed; any other value is shown as voxel to voxel
    int voiIndex = -1;     ///< index of the VOI for voxel to voxel
    QVector<int> seedVois; ///< chosen VOI indices, in the order of the selection
};
