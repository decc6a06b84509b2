// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/tsv_table.h"

namespace corvane
{

/// Which matrices of a study's folder make a group. Labels are without their prefix ("rest"), or
/// empty where the study has but one.
struct StudySelection {
    QString out;          ///< the study's folder, with participants_connectome.tsv
    QString participants; ///< path of participants.tsv, or empty for none
    QString atlas, space, task, session;
    bool allSessions = false;                               ///< a row for each session
    QString measure = QStringLiteral("pearsoncorrelation"); ///< as files are named
};

struct StudyTable {
    /// As GroupTable takes it: participant_id, session_id, matrix and, if all rows have one,
    /// matrix_uncleaned, mean_fd (before censoring) and degrees_of_freedom of the ledger, and the
    /// columns of participants.tsv but for those of the same names.
    TsvTable table;
    QStringList left; ///< who has no row and why, one line each
};

/// The rows of a study that are done, with what is known of their participants; those who are not
/// in participants.tsv lack its values. Throws InputError for a study or table that cannot be read,
/// when no row is left, and when rows are of several atlases, spaces, tasks or sessions of which
/// none was chosen: they are listed.
StudyTable readStudyTable(const StudySelection &selection);

} // namespace corvane
