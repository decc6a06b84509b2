// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/study/study_plan.h"

/// @file
/// The pages of a study's participants and of the study itself, from records alone.

namespace corvane
{

/// Writes sub-S.html into the study's folder unless it stands there like this. Throws InputError.
void writeSubjectPage(const QString &out, const QString &participantFolder,
                      const std::vector<KnownRow> &rows);

/// Writes index.html of all rows, likewise. `table` is the file of the study's table. Needs a
/// QGuiApplication. Throws InputError.
void writeStudyPage(const QString &out, const std::vector<KnownRow> &rows, const QString &table);

} // namespace corvane
