// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include <Eigen/Core>

#include "signals/design.h"

namespace signals
{

struct Cleaned {
    /// Kept volumes x series; the volumes' numbers are Design::rows.
    Eigen::MatrixXd series;
    /// Of each series over the kept volumes, before cleaning: what is added where cleaned data
    /// should keep their level.
    Eigen::RowVectorXd means;
    /// Series that Standardize::psc made 0, having no mean to relate to.
    std::vector<Eigen::Index> without_mean;
};

/// Cleans a block of series of one run: Preparation, then the residuals of the design, then the
/// standardisation.
///
/// A series that is constant over the kept volumes stays exactly constant, 0 where the design takes
/// the mean. Each series for itself, so that a run may come in blocks. Without standardisation it
/// is linear: the mean of cleaned series is the cleaned mean.
///
/// \param series all volumes of the file x series; no series are allowed.
/// \throws Error if there is not one row per volume, or a value is not finite, with its place.
Cleaned clean(const Eigen::MatrixXd &series, const Design &design);

} // namespace signals
