// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include <Eigen/Core>

#include "signals/windows.h"

/// \file
/// The volumes of a task's conditions. Without regressors of the task, matrices of conditions hold
/// the shared response to the stimulus too.

namespace signals
{

struct Event {
    double onset = 0;    ///< seconds from the start of the run
    double duration = 0; ///< seconds
};

/// The volumes of an event: floor((onset + delay)/tr) to ceil((onset + delay + duration)/tr) - 1,
/// at least one, cut to the run; length 0 if none of them is in the run. Times within 1e-3 volumes
/// of a border are on it, since files keep repetition times in few digits. \throws UsageError if tr
/// is not above 0 or a time is not finite, Error if the duration is negative.
Window event_volumes(const Event &event, double delay, double tr, Eigen::Index volumes);

/// The rows of the cleaned series whose volumes stand in any of the windows, ascending, each once.
/// \param rows the kept volumes' numbers in the file.
std::vector<Eigen::Index> rows_in(const std::vector<Window> &windows,
                                  const std::vector<Eigen::Index> &rows);

/// The series of a condition: the rows in any of its windows, in the order of the file.
/// \param series kept volumes x series.
Eigen::MatrixXd condition_series(const Eigen::MatrixXd &series, const std::vector<Window> &windows,
                                 const std::vector<Eigen::Index> &rows);

/// The same with each window centred on its own mean, so that differences of level between the
/// intervals make no correlation. A volume that stands in two windows counts to the earlier one.
Eigen::MatrixXd centred_condition_series(const Eigen::MatrixXd &series,
                                         const std::vector<Window> &windows,
                                         const std::vector<Eigen::Index> &rows);

} // namespace signals
