// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/example_study/participants.h"

namespace corvane::example_study
{

/// The six parameters by which a pipeline told how the head moved: volumes x 6, mm and then rad, as
/// they stand in the table, rounded. Slow walks and jerks, after some of which the head
/// stays where it is; more of both in patients.
Eigen::MatrixXd motionOf(const Run &run);

} // namespace corvane::example_study
