// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/progress.h"

#include <QString>

namespace corvane
{

constexpr int mostStudyParticipants = 24;

struct ExampleStudyRequest {
    QString folder;                           ///< empty, or not there yet
    int participants = mostStudyParticipants; ///< even, from 2 on
    int threads = 0;                          ///< 0 for one per processor
};

/// Writes a study as a preprocessing pipeline leaves it: runs of two groups in two sessions, at
/// rest and with a task, their masks, sidecars, confounds and events, an atlas with networks, a
/// table of the participants, and the edges in which the groups differ. The same on each machine
/// and for any number of threads; a smaller study has the first participants of the whole one.
///
/// All appears at the end, or nothing. Throws InputError, also for a folder with anything in it,
/// and WorkStopped.
void writeExampleStudy(const ExampleStudyRequest &request, const ProgressWatch &watch = {});

/// What was written, in one line for people.
QString studySummary(const ExampleStudyRequest &request);

} // namespace corvane
