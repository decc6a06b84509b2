// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/study/row_record.h"

#include <functional>

namespace corvane
{

/// Where lines for the user go.
using Tell = std::function<void(const QString &line)>;

/// One line: "sub-01_task-rest_atlas-A: done, 154 of 200 volumes kept, 110 degrees of freedom
/// left".
QString lineOf(const RowRecord &record);

/// Computes, one after the other in this process, those rows that are not yet there or have
/// changed, each under its lock; one that another process has is passed over, which is told. With
/// `keepFailed` rows that failed before stay so. All rows are of one participant, whose page is
/// written at the end. Throws InputError when nothing can be written.
void runRows(const std::vector<StudyRow> &rows, const StudySettings &settings, bool keepFailed,
             const Tell &tell);

/// Records as failed what a process that is gone had in work: the row's lock still stands. `how` it
/// ended, or empty. Returns the lines to be told.
QStringList recordCrashes(const std::vector<RowRecord> &planned, const QString &out,
                          const QString &how);

} // namespace corvane
