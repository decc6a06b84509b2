// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/example_study/participants.h"

namespace corvane::example_study
{

/// Correlations of the nodes that a run's series are drawn with, without the task: those of the
/// group, and what is the participant's own, in part in one session only. Positive definite.
Eigen::MatrixXd correlationsOf(const Run &run);

/// The series of the nodes: volumes x nodes, of mean 0 and variance 1 but for what a task adds.
/// During a task, frontoparietal, dorsal attention and salience nodes respond and the default mode
/// network falls; in the harder blocks the first two also share a series.
Eigen::MatrixXd nodeSeriesOf(const Run &run);

} // namespace corvane::example_study
