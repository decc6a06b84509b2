// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

#include "statistics/design.h"
#include "statistics/edges.h"

namespace statistics
{

/// A design of two rows per participant, turned into one of differences.
struct PairedDesign {
    /// Pairs x columns: ones under the tested column's name, then the columns that do not change
    /// within participants, less their means. They are then effects on the difference.
    Eigen::MatrixXd matrix;
    std::vector<std::string> columns;
    std::vector<std::string> participants;
    /// For each pair its row at the tested column's lower and at its higher value, as rows of
    /// `Design::matrix`.
    std::vector<Index> lower;
    std::vector<Index> higher;
};

/// Pairs the rows of each participant by the tested column, whose two values are the same for all.
/// The test of the tested column is then that of a mean difference, by signs.
///
/// \param participants one per row of the design; pairs stand in the order of their first rows.
/// \param tested a column of the design with exactly two values, such as `session[post]`.
/// \throws Error naming the participant or column if a participant has not exactly two rows, not
///         one at each value of the tested column, or another column changes within a participant.
PairedDesign pair_rows(const Design &design, const std::vector<std::string> &participants,
                       const std::string &tested);

/// Pairs x edges: the data at the higher value less those at the lower one.
EdgeData differences(const EdgeData &data, const PairedDesign &pairs);

} // namespace statistics
