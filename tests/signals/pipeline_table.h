// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "signals/confounds.h"

/// A table of confounds as a pipeline writes it, made of noise.
namespace pipeline_table
{

enum class Generation {
    older, ///< all anatomical components are a_comp_cor_NN
    newer  ///< those of csf and white matter are c_comp_cor_NN and w_comp_cor_NN
};

/// Motion, csf, white_matter and global_signal with derivatives and squares (n/a in row 0 where it
/// belongs), framewise_displacement, std_dvars, cosines at 0.008 Hz for 2 s, six components of each
/// mask, and two non-steady volumes.
signals::ConfoundsTable make(Eigen::Index volumes, Generation generation = Generation::newer);

/// The table without some columns.
signals::ConfoundsTable without(const signals::ConfoundsTable &table,
                                const std::vector<std::string> &names);
/// One value changed.
signals::ConfoundsTable with(signals::ConfoundsTable table, const std::string &column,
                             Eigen::Index row, double value);

} // namespace pipeline_table
