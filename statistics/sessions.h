// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

#include "statistics/edges.h"

namespace statistics
{

/// Rows of a table sorted by participant and session.
struct RepeatedSessions {
    std::vector<std::string> participants; ///< those with all sessions, in the order of the table
    std::vector<std::string> sessions;     ///< in byte order
    /// Participants x sessions: the row of each.
    Eigen::Matrix<Index, Eigen::Dynamic, Eigen::Dynamic> rows;
    std::vector<std::string> incomplete; ///< participants who lack a session, and left
};

/// Which rows repeat each other.
/// \throws Error if the lists differ in length, a participant has a session twice, there are fewer
///         than two sessions, or fewer than two participants have them all.
RepeatedSessions repeated_sessions(const std::vector<std::string> &participants,
                                   const std::vector<std::string> &sessions);

/// The data of one session, participants x edges.
EdgeData data_of(const EdgeData &data, const RepeatedSessions &repeated, Index session);

} // namespace statistics
