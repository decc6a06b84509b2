// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/output_folder.h"

namespace corvane
{

/// Names of the files that writeRestingRun makes.
namespace restfiles
{
constexpr auto run = "sub-01_task-rest_space-T1w_desc-preproc_bold.nii.gz";
constexpr auto mask = "sub-01_task-rest_space-T1w_desc-brain_mask.nii.gz";
constexpr auto confounds = "sub-01_task-rest_desc-confounds_timeseries.tsv";
constexpr auto components = "sub-01_task-rest_desc-confounds_timeseries.json";
} // namespace restfiles

/// Writes a run at rest as a preprocessing pipeline leaves it: the series of example::restSeries,
/// and on top of them drift, six motion parameters that change the signal by where a voxel lies,
/// spikes at jerks of the head, a wave of the whole brain, signals of fluid and white matter, and
/// the scanner's start; with a mask and with the table of confounds that a pipeline would make of
/// it. Throws InputError.
void writeRestingRun(const OutputFolder &folder);

} // namespace corvane
