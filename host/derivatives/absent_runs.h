// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/derivatives/run_images.h"
#include "host/derivatives/run_index.h"

/// @file
/// Rows for what was asked for and is not there.

namespace corvane
{

/// "a, b, c, d, e and 4 more", "none"
QString enumerated(const QStringList &names);

/// Whether the options and the file ask for a run.
bool isAskedFor(const BidsName &name, const RunFilter &filter, const FilterFile &file);

StudyRun absentRow(const QString &participant, const QString &reason);

/// The row of a participant whose images, if there are any, all do not match.
StudyRun absentParticipant(const QString &participant, const std::vector<RunImage> &images,
                           const RunFilter &filter);

/// For a participant of whom some images match: a row for each label that was asked for and that
/// none of them has.
std::vector<StudyRun> absentLabels(const QString &participant, const std::vector<RunImage> &images,
                                   const std::vector<RunImage> &matching, const RunFilter &filter);

} // namespace corvane
