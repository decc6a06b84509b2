// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "signals/censoring.h"
#include "signals/confounds.h"
#include "signals/design.h"

/// \file
/// Denoising strategies by name: which columns of a table of confounds are regressed out, and which
/// volumes are left out.
///
/// Sources: Friston et al. 1996, Magn Reson Med 35:346, doi:10.1002/mrm.1910350312 (24 motion
/// parameters); Satterthwaite et al. 2013, NeuroImage 64:240, doi:10.1016/j.neuroimage.2012.08.052
/// (36); Behzadi et al. 2007, NeuroImage 37:90, doi:10.1016/j.neuroimage.2007.04.042 (components);
/// Wang et al. 2024, PLoS Comput Biol 20:e1011942, doi:10.1371/journal.pcbi.1011942 (the first six
/// names below); compared by Ciric et al. 2017, NeuroImage 154:174,
/// doi:10.1016/j.neuroimage.2017.03.020.

namespace signals
{

/// Which of a signal's columns are taken.
enum class Expansion {
    plain,       ///< itself
    derivatives, ///< and _derivative1
    full         ///< and _power2, _derivative1_power2
};

struct Term {
    std::vector<std::string> signals_of_table;
    Expansion expansion;
};

enum class Cosines { none, all_orders, not_butterworth };
enum class Components { none, combined, of_each_mask };

/// A row of the table of strategies.
struct Strategy {
    std::string_view name;
    /// For people.
    std::string_view regressors, censoring;

    std::vector<Term> terms;
    Cosines cosines = Cosines::none;
    Components components = Components::none;
    Thresholds thresholds;
};

/// All of them, in the order in which they are shown. The last one, "columns:", takes the columns
/// that follow in its name.
const std::vector<Strategy> &strategies();

struct StrategyRequest {
    /// A name of the table, or "columns:a,b,c*"; a `*` at the end stands for any ending.
    std::string strategy;
    /// Of the run; the table must have as many rows.
    Eigen::Index volumes = 0;
    /// Where given, instead of the strategy's.
    std::optional<double> fd_threshold;
    std::optional<double> dvars_threshold;
    std::optional<Eigen::Index> min_segment;
    /// The first so many volumes are non-steady; not given: those that the table marks.
    std::optional<Eigen::Index> dummy_scans;
    /// At most so many components, of each mask.
    std::optional<Eigen::Index> components;
    /// Volumes to leave out besides, one flag per volume; empty for none.
    Flags censor;
    /// Of a table without a header.
    std::optional<MotionOrder> motion_order;
    /// Some strategies take the table's cosines in some orders only.
    Order order = Order::joint;
};

struct Selection {
    /// Columns in the order of their names' bytes.
    Regressors regressors;
    Volumes volumes;
    /// In force.
    Thresholds thresholds;
    /// Sentences for people.
    std::vector<std::string> notes;
};

/// Applies a strategy to a table.
///
/// - n/a in row 0 takes the value of row 1.
/// - A run without cosines is taken as one too short for any, but by strategies with components,
///   which are made from series without drift.
/// - A table without a header has motion parameters alone: motion6, motion24, none and columns:
/// take
///   it. Without \ref StrategyRequest::motion_order its FD is unknown, which is noted.
/// - Without FD or std_dvars where a threshold asks for it, the table lacks a column.
///
/// \throws UsageError if the name is unknown, a number out of range, or an FD threshold is given
/// for a table without a header and without an order of its columns; Error if rows and volumes
/// differ, columns or the JSON are missing (naming them all), or a value is missing (naming column
/// and row).
Selection select(const ConfoundsTable &table, const StrategyRequest &request);

} // namespace signals
