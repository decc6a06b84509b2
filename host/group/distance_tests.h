// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/progress.h"
#include "host/group/group_data.h"
#include "statistics/dbicc.h"
#include "statistics/distance_anova.h"

#include <optional>

namespace corvane
{

/// Whether distances follow a contrast of the design.
struct DistanceContrast {
    std::string name;
    statistics::DistanceAnova anova;
    qint64 rearrangements = 0;
    bool isExhaustive = false;
};

/// What distances between the matrices of a group tell.
struct DistanceResult {
    Eigen::MatrixXd distances; ///< rows x rows of the group
    std::vector<DistanceContrast> contrasts;
    /// Where participants come in several rows.
    std::optional<statistics::Dbicc> dbicc;
};

/// Compares the graphs of all pairs of rows by the spectral distance that the plugin shows, tests
/// each contrast, and where participants come in several rows tells how much nearer their own are.
/// Throws InputError, statistics::Error, WorkStopped.
DistanceResult testDistances(const GroupData &data, const GroupRequest &request,
                             const ProgressWatch &watch);

} // namespace corvane
