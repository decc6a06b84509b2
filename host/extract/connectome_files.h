// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/extract/connectome.h"
#include "host/files/output_folder.h"

namespace corvane
{

/// How the files of a connectome are named, and where its inputs stand.
struct ConnectomeNames {
    QString prefix;      ///< "sub-01_task-rest_space-T1w"
    QString atlas;       ///< letters and digits
    QString datasetRoot; ///< inputs below it are named by where they stand in it; empty for none

    /// "sub-01_task-rest_space-T1w_atlas-A", and with an underscore and the rest behind it.
    QString stem() const;
    QString file(const QString &rest) const;
};

ConnectomeNames namesOf(const ConnectomeRequest &request);

/// What a part's files of a measure are called, without ending:
/// "sub-01_atlas-A_window-003_stat-pearsoncorrelation".
QString matrixStem(const ConnectomeNames &names, const PartMatrix &matrix);

/// Writes the tables of a connectome and the JSON beside each matrix, flat into the folder. Throws
/// InputError, and nodalis::Ended and WorkStopped when a watch says so.
void writeConnectomeTables(const OutputFolder &folder, const ConnectomeRequest &request,
                           const ConnectomeNames &names, const Connectome &connectome,
                           int threads = 1, const StepWatch &steps = {});

} // namespace corvane
