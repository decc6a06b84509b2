// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/study/input_stamp.h"
#include "host/study/study_row.h"

#include <QStringList>

#include <vector>

/// @file
/// What became of a row, in a hidden file beside its outputs (docs/file-formats.md).

namespace corvane
{

enum class RowStatus {
    Done,
    Excluded, ///< by a rule of the ledger
    Missing,  ///< a file that the run needs is not there
    Failed    ///< unreadable, crashed
};

/// "done", "excluded", "missing", "failed"
QString nameOf(RowStatus status);

struct RowRecord {
    RowName name;
    RowStatus status = RowStatus::Failed;
    QString reason;                       ///< empty when it is done
    QString dataset;                      ///< absolute path at that time
    QJsonObject options;                  ///< by which it was made
    QString settings;                     ///< their sum, with the version of the program
    std::optional<double> repetitionTime; ///< seconds, where it was not the header's
    std::vector<InputStamp> inputs;
    QStringList outputs; ///< names in its folder
    QJsonObject ledger;  ///< as in the sidecars; empty where it is not known
    QStringList notes;   ///< what was said
    QDateTime begun, ended;
    QString host;
    qint64 process = 0;
    QString job; ///< of Slurm; empty without one
};

/// Throws InputError.
void writeRecord(const QString &out, const RowRecord &record);

/// Unset when there is none, or one that is damaged or of another version: such a row is made
/// again.
std::optional<RowRecord> readRecord(const QString &path);

/// All records of a participant's folder, by session, name and atlas.
std::vector<RowRecord> recordsOf(const QString &out, const QString &participantFolder);

} // namespace corvane
