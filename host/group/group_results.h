// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/group/distance_tests.h"
#include "host/group/group_tests.h"
#include "host/group/motion_tests.h"
#include "host/group/session_tests.h"

namespace corvane
{

/// What all tests of a request found; what was not asked for is empty.
struct GroupResults {
    std::vector<ContrastResult> contrasts; ///< of the model at every edge
    std::optional<DistanceResult> distance;
    std::optional<IccResult> icc;
    std::vector<FingerprintResult> fingerprints;
    std::vector<QcFcResult> qcfc;
    QStringList notes; ///< what the user should know, one line each
};

/// Does all tests that are asked for. Throws InputError, statistics::Error and WorkStopped.
GroupResults testGroup(const GroupData &data, const GroupRequest &request, const StepWatch &steps);

} // namespace corvane
