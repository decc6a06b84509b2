// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cmath>
#include <string>

#include <Eigen/Core>

#include "signals/error.h"
#include "signals/text.h"

namespace signals
{

/// \throws Error naming the first value that is not finite: "series 3, volume 17 is nan: ..",
/// where \p columns is what a column is called.
inline void require_finite(const Eigen::Ref<const Eigen::MatrixXd> &values,
                           const std::string &columns)
{
    if (values.allFinite()) {
        return;
    }
    for (Eigen::Index column = 0; column < values.cols(); ++column) {
        for (Eigen::Index row = 0; row < values.rows(); ++row) {
            if (!std::isfinite(values(row, column))) {
                throw Error(columns + " " + std::to_string(column) + ", volume " +
                            std::to_string(row) + " (both from 0) is " +
                            number(values(row, column)) + ": expected a finite number");
            }
        }
    }
}

} // namespace signals
