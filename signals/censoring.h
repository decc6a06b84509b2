// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <Eigen/Core>

#include "signals/volumes.h"

namespace signals
{

/// What makes a volume an outlier. A threshold or a length of 0 is off.
struct Thresholds {
    /// Framewise displacement above this, in mm.
    double fd = 0;
    /// Standardised DVARS above this.
    double std_dvars = 0;
    /// Shorter runs of volumes between outliers go too.
    Eigen::Index min_segment = 5;
};

/// The volumes to leave out for motion: those whose FD or standardised DVARS lies strictly above
/// its threshold, and then, if there is any, all in runs of fewer than min_segment volumes between
/// two of them, before the first or after the last. A NaN never exceeds.
///
/// Non-steady volumes and those that the user names join the result afterwards: they shorten no
/// segment.
///
/// Source: Power et al. 2014, NeuroImage 84:320, doi:10.1016/j.neuroimage.2013.08.048.
///
/// \param fd,std_dvars one value per volume; one that is empty is no criterion.
/// \return one flag per volume.
/// \throws UsageError if a threshold or the length is negative or not a number, Error if the two
/// have different lengths.
Flags outliers(const Eigen::ArrayXd &fd, const Eigen::ArrayXd &std_dvars,
               const Thresholds &thresholds);

} // namespace signals
