// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/import/import_plan.h"

#include <QStringList>

/// @file
/// What is to be done with files and folders that a user opens or drops together.

namespace corvane
{

struct GivenFiles {
    QStringList toOpen;       ///< the host's own files, and one anatomy by itself
    QStringList toImport;     ///< runs, tables, and images when there are several
    QString dataset;          ///< the folder of a pipeline; empty for none
    QStringList participants; ///< those of the dataset that are meant; empty for all
    QStringList faults;       ///< what cannot be used, and what could be, in a sentence each
};

/// Sorts what is given. A folder stands for the pipeline's folder that it is, lies in, or holds in
/// "derivatives"; any other for the files in it.
GivenFiles sortGivenFiles(const QStringList &paths);

/// Imports with every field filled by what the files are: one for each run, or a single one without
/// a run. An anatomy, events and confounds go to the run that they belong to by their names, or to
/// the only one; VOIs to all. What has no place is told in `faults`.
std::vector<ImportRequest> requestsOf(const QStringList &files, QStringList &faults);

} // namespace corvane
