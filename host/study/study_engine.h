// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/study/run_rows.h"
#include "host/study/study_status.h"

#include <vector>

namespace corvane
{

/// The rows of one participant.
using ParticipantRows = std::vector<StudyRow>;

/// The rows of each participant, in their order.
std::vector<ParticipantRows> byParticipant(std::vector<StudyRow> rows);

/// Whether something is to be made of these rows.
bool hasWork(const ParticipantRows &rows, const StudySettings &settings);

/// Makes the study's folder ready for rows: its description, and each participant's plan. Throws
/// InputError.
void prepareStudy(const std::vector<ParticipantRows> &participants, const StudySettings &settings,
                  const Tell &tell);

/// The rest of the command line by which a process computes participants: with all options of this
/// one.
struct StudyCommand {
    QStringList words; ///< all but which participants
    int processes = 1;
    QStringList of(const QStringList &participants) const;
};

/// Computes what is to be made on this machine: one participant in this process, several in
/// processes of their own.
void runOnThisMachine(const std::vector<ParticipantRows> &participants,
                      const StudySettings &settings, const StudyCommand &command, bool keepFailed,
                      const Tell &tell);

} // namespace corvane
