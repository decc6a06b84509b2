// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/study/run_rows.h"
#include "host/study/slurm_engine.h"
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
    int processes = 1; ///< on this machine
    bool keepFailed = false;
    int participantsPerTask = 1; ///< of Slurm
    QStringList slurmOptions;    ///< for sbatch

    /// Of a process that computes and does not collect, but for its participants.
    QStringList task() const;
};

/// Computes what is to be made on this machine: one participant in this process, several in
/// processes of their own.
void runOnThisMachine(const std::vector<ParticipantRows> &participants,
                      const StudySettings &settings, const StudyCommand &command, const Tell &tell);

/// Submits what is to be made to Slurm, without waiting for it, and returns the jobs; none when
/// there is nothing to do. `afterwards` are the command lines of what follows: collecting first.
std::optional<SlurmJobs> submitStudy(const std::vector<ParticipantRows> &participants,
                                     const StudySettings &settings, const StudyCommand &command,
                                     const std::vector<QStringList> &afterwards);

} // namespace corvane
