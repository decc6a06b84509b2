// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/derivatives/run_filter.h"

/// @file
/// The runs in a folder of subjects as a preprocessing pipeline leaves it, by the names of files:
///
///     DATASET/sub-01/[ses-a/]func/sub-01_[ses-a_]task-rest_space-S_desc-preproc_bold.nii.gz

namespace corvane
{

/// A run, or one that was asked for and is not there. Labels are empty without the entity, paths
/// where there is no such file.
struct StudyRun {
    QString participant;
    QString session;
    QString task;
    QString space;
    QString folder;    ///< where it lies below the dataset: "sub-01/ses-a/func"
    QString prefix;    ///< what the names of its outputs begin with, see runPrefix()
    QString bold;      ///< the image; empty for a run that is not there
    QString mask;      ///< desc-brain_mask on the run's grid
    QString confounds; ///< desc-confounds_timeseries.tsv, in older folders _regressors.tsv
    QString events;    ///< the events table beside the run
    std::optional<double> repetitionTime; ///< seconds, of its JSON files; none when they have none
    QString reason; ///< why it cannot be computed, in one line; empty when it can
};

/// Labels of the participants that have a folder in the dataset, ascending. Throws InputError for a
/// folder that is not there.
QStringList participantsOf(const QString &dataset);

/// The runs asked for: images in NIfTI with desc-preproc, the suffix bold and a space, but no
/// single echoes. Sorted by participant, then by folder and name. Looks into no folder of a
/// participant who is not asked for.
///
/// What belongs to a run lies beside it, and its entities are all the run's: the file with most of
/// them counts. A mask must also have the run's space and res. More than one such file is a reason.
///
/// What is asked for and not there is a row with a reason: a participant without a folder or
/// without a matching run, and for one with other runs each session, task or space of which there
/// is none. Throws InputError for a dataset folder that is not there and for a filter file that
/// cannot be read.
std::vector<StudyRun> indexRuns(const QString &dataset, const RunFilter &filter);

} // namespace corvane
