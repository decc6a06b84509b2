// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>
#include <vector>

#include <Eigen/Core>

#include "signals/motion.h"
#include "signals/volumes.h"

/// \file
/// What a preprocessing pipeline tells of each volume, by the names of its columns: those of
/// fMRIPrep (Esteban et al. 2019, Nat Methods 16:111, doi:10.1038/s41592-018-0235-4) before and
/// since version 20.2. Reading the file is the caller's.

namespace signals
{

/// What the JSON beside a table says of a component.
struct Component {
    std::string name;
    std::string method; ///< "aCompCor", "tCompCor"
    std::string mask;   ///< "combined", "CSF", "WM"; empty without one
    bool retained = true;
};

struct ConfoundsTable {
    /// One per column, in any order. A file without a header has p1, p2, ..
    std::vector<std::string> names;
    /// volumes x names; NaN where the file has n/a.
    Eigen::MatrixXd values;
    /// Not there if the file has no JSON beside it.
    std::optional<std::vector<Component>> components;
};

/// Whether the columns are p1, p2, ..: motion parameters of other packages.
bool is_headerless(const ConfoundsTable &table);

/// The place of a column.
std::optional<Eigen::Index> column_named(const ConfoundsTable &table, const std::string &name);

/// The six parameters trans_x, trans_y, trans_z, rot_x, rot_y, rot_z.
const std::vector<std::string> &motion_columns();

/// A column's value in row 0 is that of row 1 where it is n/a: what is taken from a difference has
/// none there.
/// \throws Error naming column and row if another value is missing or not finite.
Eigen::VectorXd complete_column(const ConfoundsTable &table, const std::string &name);

/// Motion parameters without a header, p1..p6, with the columns that a pipeline would have added
/// to each: _derivative1 (backward difference, n/a in row 0), _power2, _derivative1_power2.
/// \throws Error if there are not six columns.
ConfoundsTable with_derived_columns(const ConfoundsTable &table);

/// FD of a table: its column framewise_displacement; else from the six motion columns; else,
/// without a header, from p1..p6 in the order given. Empty if none of these is there.
Eigen::ArrayXd displacement_of(const ConfoundsTable &table, std::optional<MotionOrder> order);

/// The volumes that any column non_steady_state_outlierNN marks.
Flags non_steady_volumes(const ConfoundsTable &table);

/// The components of an anatomical mask in ascending order of their numbers: "combined", "CSF" or
/// "WM".
///
/// "combined" are those that the JSON calls aCompCor of that mask and retained. The others are the
/// columns c_comp_cor_NN and w_comp_cor_NN; older tables, which have neither, call all
/// a_comp_cor_NN, and only the JSON tells. Numbers count as numbers: a_comp_cor_70 comes before
/// a_comp_cor_100. \throws Error if the JSON is needed and not there.
std::vector<std::string> anatomical_components(const ConfoundsTable &table,
                                               const std::string &mask);

} // namespace signals
