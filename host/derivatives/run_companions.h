// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/derivatives/run_index.h"

/// @file
/// What lies farther from a run than beside it: the anatomy of its space, an atlas, and the events
/// that stayed in the dataset that the pipeline was given.

namespace corvane
{

/// Paths, empty where there is no such file.
struct RunCompanions {
    QString anatomy; ///< desc-preproc T1w or T2w in the run's space, of its session or participant
    QString atlas;   ///< labels in the run's space: on its grid beside it, else with the anatomy
    QString labels;  ///< table with the names of the atlas's labels
    QString events;  ///< beside the run, else in the dataset above a folder "derivatives"
};

/// For a run of the index of that dataset.
RunCompanions companionsOf(const QString &dataset, const StudyRun &run);

/// The table that names the labels of an atlas: it has the atlas's name, or its desc and suffix, in
/// the atlas's folder or in `dataset` (none when empty). Empty without one.
QString labelsOf(const QString &atlas, const QString &dataset = {});

} // namespace corvane
