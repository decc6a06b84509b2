// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/derivatives/run_index.h"
#include "host/import/write_import.h"

/// @file
/// The import of the runs in a folder as a preprocessing pipeline leaves it.

namespace corvane
{

/// A run of the folder, and how it is imported.
struct BidsImport {
    StudyRun run;
    ImportRequest request;
    QString reason; ///< why it cannot be imported, in one line; empty when it can
};

/// What is the same for all runs. Of `request` those fields count that name no file of a run:
/// voiSources are common ones, and take the place of what the folder has for each run. Of its
/// cleaning the table of confounds is each run's own. Files go into
/// FOLDER/sub-01/[ses-a/], named after the run's entities.
std::vector<BidsImport> bidsImports(const QString &dataset, const RunFilter &filter,
                                    const ImportRequest &request);

/// Imports one. Throws what planImport and writeImport throw.
ImportReport importRun(const BidsImport &import, const ProgressWatch &watch = {});

/// What became of several runs.
struct ImportedRuns {
    struct Fault {
        std::size_t run; ///< its place among them
        QString text;
    };
    std::vector<ImportReport> reports; ///< of those that were imported
    std::vector<Fault> faults;         ///< of those that could not be
};

/// Imports one after the other; one that cannot be imported stops no other. Throws WorkStopped, and
/// `imported` then holds what was done before.
void importRuns(const std::vector<BidsImport> &runs, const ProgressWatch &watch,
                ImportedRuns &imported);

} // namespace corvane
