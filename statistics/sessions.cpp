// SPDX-License-Identifier: GPL-3.0-or-later
#include "statistics/sessions.h"

#include <algorithm>
#include <map>
#include <set>

#include "statistics/error.h"
#include "statistics/text.h"

namespace statistics
{

RepeatedSessions repeated_sessions(const std::vector<std::string> &participants,
                                   const std::vector<std::string> &sessions)
{
    if (participants.size() != sessions.size()) {
        throw Error(counted(static_cast<Index>(participants.size()), "participant label") +
                    " with " + counted(static_cast<Index>(sessions.size()), "session label"));
    }
    std::map<std::string, std::map<std::string, Index>> row_of;
    std::vector<std::string> in_order;
    for (std::size_t row = 0; row < participants.size(); ++row) {
        std::map<std::string, Index> &own = row_of[participants[row]];
        if (own.empty()) {
            in_order.push_back(participants[row]);
        }
        if (!own.emplace(sessions[row], static_cast<Index>(row)).second) {
            throw Error("participant " + participants[row] + " has session " + sessions[row] +
                        " twice");
        }
    }
    const std::set<std::string> names(sessions.begin(), sessions.end());
    if (names.size() < 2) {
        throw Error(counted(static_cast<Index>(names.size()), "session") +
                    "; what repeats needs at least two");
    }

    RepeatedSessions repeated;
    repeated.sessions.assign(names.begin(), names.end());
    for (const std::string &participant : in_order) {
        const bool complete = row_of[participant].size() == names.size();
        (complete ? repeated.participants : repeated.incomplete).push_back(participant);
    }
    if (repeated.participants.size() < 2) {
        throw Error(counted(static_cast<Index>(repeated.participants.size()), "participant") +
                    " with all of the sessions " + joined(repeated.sessions) +
                    "; at least two are needed");
    }
    repeated.rows.resize(static_cast<Index>(repeated.participants.size()),
                         static_cast<Index>(names.size()));
    for (Index i = 0; i < repeated.rows.rows(); ++i) {
        for (Index j = 0; j < repeated.rows.cols(); ++j) {
            repeated.rows(i, j) = row_of[repeated.participants[i]][repeated.sessions[j]];
        }
    }
    return repeated;
}

EdgeData data_of(const EdgeData &data, const RepeatedSessions &repeated, Index session)
{
    EdgeData of_session(repeated.rows.rows(), data.cols());
    for (Index i = 0; i < of_session.rows(); ++i) {
        if (repeated.rows(i, session) >= data.rows()) {
            throw Error("the data have " + counted(data.rows(), "row") +
                        ", fewer than the table of sessions");
        }
        of_session.row(i) = data.row(repeated.rows(i, session));
    }
    return of_session;
}

} // namespace statistics
