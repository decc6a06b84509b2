// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include <Eigen/Core>

#include "signals/butterworth.h"
#include "signals/volumes.h"

namespace signals
{

/// What series and regressors go through alike before the regression. Linear in the series.
struct Preparation {
    Flags kept;
    /// Subtract mean and line: of the kept rows, or before a filter of all rows in the range.
    bool detrend = false;
    /// Empty: no filter. Else the volumes from `first` on, `count` of them, are interpolated where
    /// they are not kept, detrended and filtered.
    std::vector<Section> filter;
    Extension extension = Extension::odd;
    Eigen::Index padding = 0;
    Eigen::Index first = 0;
    Eigen::Index count = 0;
};

/// \param series volumes x series. \return kept volumes x series.
/// \throws Error if there is not one row per volume, or there are too few for the filter.
Eigen::MatrixXd prepared(const Eigen::MatrixXd &series, const Preparation &preparation);

} // namespace signals
