// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/progress.h"
#include "host/group/group_data.h"
#include "statistics/leave_one_out.h"
#include "statistics/permutation_test.h"

namespace corvane
{

/// What a contrast found.
struct ContrastResult {
    statistics::Hypothesis hypothesis;
    std::vector<std::string> participants; ///< one per row of the hypothesis' design
    bool bySigns = false;                  ///< else by permutations
    statistics::PermutationTestResult test;
    /// For each participant what the result would be without; empty for F.
    std::vector<statistics::Influence> influences;
    QStringList notes; ///< what the user should know, one line each
};

/// Tests one contrast at all edges, and networks above the thresholds. Throws InputError for a file
/// of permutations that is none, statistics::Error, and WorkStopped.
ContrastResult testContrast(const GroupData &data, const GroupRequest &request,
                            const QString &contrast, const StepWatch &steps);

} // namespace corvane
