// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <Eigen/Core>

namespace corvane
{

/// Says on standard error how long local efficiency of a matrix will take, when that may be long:
/// above 2,000 nodes. Zero threads are one for each processor.
void tellTimeOfLocalEfficiency(const Eigen::MatrixXf &weights, int threads);

} // namespace corvane
