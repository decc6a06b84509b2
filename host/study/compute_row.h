// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/output_folder.h"
#include "host/study/row_record.h"

namespace corvane
{

/// Writes what a row consists of, but for its record, into a folder in work. A page needs a
/// QGuiApplication. Throws what
/// makeConnectome throws.
Connectome writeRow(const StudyRow &row, const QString &dataset, bool withPage,
                    const OutputFolder &folder);

/// What a row's page is called.
QString runPageName(const RowName &name);

/// The record of a row that was not tried yet: what it is, and who is at it.
RowRecord begunRecord(const StudyRow &row, const StudySettings &settings);

/// Computes a row, puts its files into their place below the study and writes its record: also of
/// one that is excluded, missing or failed, whose outputs of an earlier time go. `before` is what
/// was recorded then. Throws InputError when the record itself cannot be written.
RowRecord computeRow(const StudyRow &row, const StudySettings &settings,
                     const std::optional<RowRecord> &before);

/// The command that owns a row's files in the record of a folder's outputs.
QString writerOf(const RowName &name);

} // namespace corvane
