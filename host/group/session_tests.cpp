// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/group/session_tests.h"

#include "statistics/error.h"
#include "statistics/sessions.h"

#include <set>

namespace corvane
{

namespace
{

using statistics::Index;

FingerprintResult fingerprintOf(const GroupData &data, const std::string &first,
                                const std::string &second, const GroupRequest &request)
{
    std::vector<Index> rows;
    std::vector<std::string> participants, sessions;
    for (std::size_t row = 0; row < data.sessions.size(); ++row) {
        if (data.sessions[row] != first && data.sessions[row] != second)
            continue;
        rows.push_back(static_cast<Index>(row));
        participants.push_back(data.participants[row]);
        sessions.push_back(data.sessions[row]);
    }
    const statistics::RepeatedSessions repeated =
        statistics::repeated_sessions(participants, sessions);
    statistics::EdgeData edges(static_cast<Index>(rows.size()), data.edges.cols());
    for (std::size_t i = 0; i < rows.size(); ++i)
        edges.row(static_cast<Index>(i)) = data.edges.row(rows[i]);
    return {first, second, repeated.participants, repeated.incomplete,
            statistics::fingerprint(statistics::data_of(edges, repeated, 0),
                                    statistics::data_of(edges, repeated, 1), request.permutations,
                                    request.seed)};
}

} // namespace

IccResult testReliability(const GroupData &data)
{
    const statistics::RepeatedSessions repeated =
        statistics::repeated_sessions(data.participants, data.sessions);
    std::vector<statistics::EdgeData> sessions;
    for (std::size_t session = 0; session < repeated.sessions.size(); ++session)
        sessions.push_back(statistics::data_of(data.edges, repeated, static_cast<Index>(session)));
    return {statistics::icc(sessions), repeated.participants, repeated.sessions,
            repeated.incomplete};
}

std::vector<FingerprintResult> testFingerprints(const GroupData &data, const GroupRequest &request)
{
    const std::set<std::string> sessions(data.sessions.begin(), data.sessions.end());
    if (sessions.size() < 2)
        throw statistics::Error("fingerprint: found one session, expected two or more");
    std::vector<FingerprintResult> results;
    for (auto first = sessions.begin(); first != sessions.end(); ++first)
        for (auto second = std::next(first); second != sessions.end(); ++second)
            results.push_back(fingerprintOf(data, *first, *second, request));
    return results;
}

} // namespace corvane
