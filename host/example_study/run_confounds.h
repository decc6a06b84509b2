// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/example_study/run_image.h"

#include <QByteArray>

namespace corvane::example_study
{

struct ConfoundsFiles {
    QByteArray table;
    QByteArray json;
};

/// What a pipeline tells of each volume of a run, made from its samples and its motion: the motion
/// and the signals of tissues with derivatives and squares, FD and DVARS, main components of fluid
/// and white matter, cosines, volumes that are not steady, outliers.
ConfoundsFiles confoundsOf(const Brain &brain, const Samples &samples, const std::vector<int> &mask,
                           const Eigen::MatrixXd &motion);

} // namespace corvane::example_study
