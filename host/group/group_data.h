// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/group/group_request.h"
#include "statistics/design.h"
#include "statistics/edges.h"

namespace corvane
{

/// The complete data of a group, ready for tests. Rows of the design, participants, blocks and
/// edges belong together.
struct GroupData {
    std::vector<std::string> participants;
    std::vector<std::string> blocks; ///< labels, empty without blocks
    statistics::Design design;
    std::vector<std::string> nodes; ///< names, or numbers from 0 for matrices without names
    statistics::EdgeData edges;     ///< Fisher's z if that is so
    bool isFisherZ = false;
    qint64 clipped = 0; ///< correlations of all but 1 that were clipped
    /// Which rows of the table and which nodes left, and why, one line each.
    QStringList left;
};

/// Reads the table, the matrices of the rows that the design includes, and what all of them have.
/// Throws InputError and statistics::Error with one line that names the file, the participant or
/// the column.
GroupData readGroupData(const GroupRequest &request);

} // namespace corvane
