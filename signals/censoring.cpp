// SPDX-License-Identifier: GPL-3.0-or-later
#include "signals/censoring.h"

#include <algorithm>

#include "signals/text.h"

namespace signals
{

namespace
{

using Index = Eigen::Index;

void require(const Eigen::ArrayXd &fd, const Eigen::ArrayXd &std_dvars,
             const Thresholds &thresholds)
{
    if (!(thresholds.fd >= 0)) {
        throw UsageError("FD threshold of " + number(thresholds.fd) + " mm: expected 0 or more");
    }
    if (!(thresholds.std_dvars >= 0)) {
        throw UsageError("threshold of standardised DVARS of " + number(thresholds.std_dvars) +
                         ": expected 0 or more");
    }
    if (thresholds.min_segment < 0) {
        throw UsageError("shortest segment of " + std::to_string(thresholds.min_segment) +
                         " volumes: expected 0 or more");
    }
    if (fd.size() > 0 && std_dvars.size() > 0 && fd.size() != std_dvars.size()) {
        throw Error("FD of " + counted(fd.size(), "volume") + ", standardised DVARS of " +
                    counted(std_dvars.size(), "volume") + ": expected as many");
    }
}

/// Flags all in runs of fewer than \p length unset flags.
Flags without_short_segments(const Flags &flags, Index length)
{
    Flags result = flags;
    Index start = 0;
    for (Index i = 0; i <= flags.size(); ++i) {
        if (i == flags.size() || flags[i]) {
            if (i - start < length) {
                result.segment(start, i - start).setConstant(true);
            }
            start = i + 1;
        }
    }
    return result;
}

} // namespace

Flags outliers(const Eigen::ArrayXd &fd, const Eigen::ArrayXd &std_dvars,
               const Thresholds &thresholds)
{
    require(fd, std_dvars, thresholds);
    Flags found = Flags::Constant(std::max(fd.size(), std_dvars.size()), false);
    if (thresholds.fd > 0 && fd.size() > 0) {
        found = found || fd > thresholds.fd;
    }
    if (thresholds.std_dvars > 0 && std_dvars.size() > 0) {
        found = found || std_dvars > thresholds.std_dvars;
    }
    return found.any() ? without_short_segments(found, thresholds.min_segment) : found;
}

} // namespace signals
