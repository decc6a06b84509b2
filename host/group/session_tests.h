// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/group/group_data.h"
#include "statistics/fingerprint.h"
#include "statistics/icc.h"

/// @file
/// How well the edges of participants repeat from one session to another.

namespace corvane
{

struct IccResult {
    statistics::Icc icc;
    std::vector<std::string> participants; ///< those with all sessions
    std::vector<std::string> sessions;
    std::vector<std::string> incomplete; ///< who lacks a session
};

/// Throws statistics::Error.
IccResult testReliability(const GroupData &data);

/// Two sessions.
struct FingerprintResult {
    std::string first, second;
    std::vector<std::string> participants; ///< those with both
    std::vector<std::string> incomplete;
    statistics::Fingerprint fingerprint;
};

/// Compares each pair of sessions, in byte order. Throws statistics::Error.
std::vector<FingerprintResult> testFingerprints(const GroupData &data, const GroupRequest &request);

} // namespace corvane
