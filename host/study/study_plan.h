// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/study/row_record.h"

#include <vector>

/// @file
/// Which rows a participant of a study has, in a hidden file in the participant's folder: so that
/// those are known of which nothing was computed yet.

namespace corvane
{

/// Writes a participant's rows, all of which have it, if they are not written like this already,
/// and removes records of rows without a run that are no longer asked for. Throws InputError.
void writePlan(const std::vector<StudyRow> &rows, const StudySettings &settings);

/// The rows of a participant that were planned last, as records without a status; none when there
/// is no plan.
std::vector<RowRecord> plannedRows(const QString &out, const QString &participantFolder);

/// Whether a participant's rows were planned with pages.
bool planHasPages(const QString &out, const QString &participantFolder);

/// What is known of a row of the study.
struct KnownRow {
    RowRecord record;
    bool isRecorded = false; ///< else it is only planned
};

/// All rows of a participant, planned or recorded, in the order of the study's table.
std::vector<KnownRow> knownRows(const QString &out, const QString &participantFolder);

} // namespace corvane
