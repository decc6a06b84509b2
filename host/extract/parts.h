// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/compute_settings.h"
#include "host/files/events_table.h"
#include "signals/windows.h"

#include <Eigen/Core>
#include <QString>
#include <optional>
#include <vector>

/// @file
/// The parts of a run that get a matrix each: the whole run, windows, conditions of a task.

namespace corvane
{

inline constexpr NamedValue<signals::Taper> taperNames[] = {{signals::Taper::none, "none"},
                                                            {signals::Taper::hann, "hann"},
                                                            {signals::Taper::gauss, "gauss"}};

struct PartsRequest {
    std::optional<double> window; ///< seconds; no windows without it
    double step = 0;              ///< seconds from window to window
    signals::Taper taper = signals::Taper::none;
    std::optional<EventsTable> events; ///< no conditions without it
    double delay = 0;                  ///< seconds by which conditions come later
    bool perInterval = false;          ///< also each interval of a condition by itself
    bool centreIntervals = false;      ///< each interval on its own mean
};

/// What one matrix is made of.
struct Part {
    QString entity;    ///< in file names: "window-003", "cond-rest"; empty for the whole run
    QString condition; ///< as the table of events calls it
    std::vector<signals::Window> windows; ///< volumes of the file; empty for the whole run
    std::vector<Eigen::Index> rows;       ///< of the cleaned series, ascending
    Eigen::ArrayXd weights;               ///< one for each row, sum 1; of windows only
    bool centreIntervals = false;
    bool filled = true;   ///< whether enough volumes are kept for a matrix
    double effective = 0; ///< volumes of equal weight that say as much
};

/// The whole run, then its windows, then its conditions, each followed by its intervals. `kept` are
/// the volumes of the cleaned series; windows begin at volume `firstSteady`. Throws
/// signals::UsageError and signals::Error.
std::vector<Part> partsOf(const PartsRequest &request, const std::vector<Eigen::Index> &kept,
                          Eigen::Index volumes, Eigen::Index firstSteady, double repetitionTime);

} // namespace corvane
