// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

#include <Eigen/Core>

#include "statistics/edges.h"
#include "statistics/table.h"

/// Networks of 48 subjects in two groups, with what independent programs found in them.
namespace nbs_reference
{

/// Whether the folder is there.
bool is_there();

/// Group, Sex and Age.
statistics::Table subjects();

/// Subjects x edges, in this library's order (the file goes column by column).
statistics::EdgeData edges();

/// From the file's order of values to this library's.
Eigen::ArrayXd in_our_order(const Eigen::ArrayXd &values);

/// One t per edge, in this library's order.
Eigen::ArrayXd t_values();

/// 1,000 x 48.
Eigen::MatrixXi permutations();

} // namespace nbs_reference
