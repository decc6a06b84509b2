// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/progress.h"
#include "host/import/import_plan.h"

namespace corvane
{

/// What is to be told of an import.
struct ImportReport {
    QStringList notes;   ///< what the user should look at, one line each
    QStringList summary; ///< what was made, one line for each file
    QStringList files;   ///< the files that were made
};

/// Writes the files of a plan; the .vtc names the .prt, if there is one. All of them appear at the
/// end, or none. Throws InputError, also when the run has changed since the plan was made, and
/// WorkStopped.
ImportReport writeImport(ImportPlan plan, const ProgressWatch &watch = {});

/// Notes go to standard error and the summary to standard output.
void printReport(const ImportReport &report);

} // namespace corvane
