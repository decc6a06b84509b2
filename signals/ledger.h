// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <limits>
#include <string>

#include <Eigen/Core>

#include "signals/volumes.h"

namespace signals
{

/// What cleaning cost a run. volumes = non_steady + censored + kept.
struct Ledger {
    Eigen::Index volumes = 0;
    Eigen::Index non_steady = 0;
    /// Left out and not already non-steady.
    Eigen::Index censored = 0;
    Eigen::Index kept = 0;
    /// Of the design, with intercept and trend.
    Eigen::Index rank = 0;
    /// What is left: kept - rank. With a band-pass filter the lesser of that and
    /// 2 tr kept (high - low) - regressors, and then only about so many.
    double degrees = 0;
    bool about = false;
    double seconds = 0;
    /// In mm, of all volumes but row 0 and non-steady ones, and of the kept ones; NaN if unknown.
    double mean_fd_before = std::numeric_limits<double>::quiet_NaN();
    double mean_fd_after = std::numeric_limits<double>::quiet_NaN();
};

/// What a run must have left. Three degrees of freedom are always needed: an interval of a
/// correlation has none below.
struct Limits {
    Eigen::Index volumes = 0;
    double seconds = 0;
};
constexpr double least_degrees = 3;

/// A run that has too little left; the text has all numbers of the ledger.
class Refused : public Error
{
public:
    Refused(const std::string &reason, const Ledger &ledger);
    const Ledger &ledger() const { return m_ledger; }

private:
    Ledger m_ledger;
};

/// The ledger before a design is known: rank 0, and all kept volumes are degrees of freedom.
/// \throws Error if the numbers of flags or of FD values differ.
Ledger count_volumes(const Volumes &volumes, double tr);

/// One line for people.
std::string text(const Ledger &ledger);

/// \throws Refused if a limit is not met, naming the first one that is not.
void require_enough(const Ledger &ledger, const Limits &limits = {});

} // namespace signals
