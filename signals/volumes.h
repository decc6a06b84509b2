// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include <Eigen/Core>

#include "signals/error.h"

namespace signals
{

/// One truth value per volume of the file.
using Flags = Eigen::Array<bool, Eigen::Dynamic, 1>;

/// What is known of each volume of a run, in the order of the file.
struct Volumes {
    /// Before the magnetisation was steady.
    Flags non_steady;
    /// Left out for motion, or by the user. A non-steady volume may be flagged here too.
    Flags censored;
    /// Framewise displacement in mm, NaN where there is none; empty when it is not known at all.
    Eigen::ArrayXd fd;

    /// All volumes steady and none left out.
    static Volumes all_of(Eigen::Index count)
    {
        return {Flags::Constant(count, false), Flags::Constant(count, false), {}};
    }
    Eigen::Index count() const { return non_steady.size(); }
    Flags kept() const { return !non_steady && !censored; }
};

/// The places of the set flags, ascending.
inline std::vector<Eigen::Index> positions(const Flags &flags)
{
    std::vector<Eigen::Index> found;
    for (Eigen::Index i = 0; i < flags.size(); ++i) {
        if (flags[i]) {
            found.push_back(i);
        }
    }
    return found;
}

} // namespace signals
