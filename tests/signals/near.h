// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cmath>
#include <limits>

#include <Eigen/Core>
#include <gtest/gtest.h>

/// Compares with the wanted values, absolutely. A NaN is near a NaN only.
inline testing::AssertionResult near(const Eigen::ArrayXXd &values, const Eigen::ArrayXXd &wanted,
                                     double tolerance)
{
    if (values.rows() != wanted.rows() || values.cols() != wanted.cols()) {
        return testing::AssertionFailure() << values.rows() << " x " << values.cols() << " values, "
                                           << wanted.rows() << " x " << wanted.cols() << " wanted";
    }
    constexpr double infinity = std::numeric_limits<double>::infinity();
    double worst = 0;
    Eigen::Index worst_row = 0;
    Eigen::Index worst_column = 0;
    for (Eigen::Index column = 0; column < values.cols(); ++column) {
        for (Eigen::Index row = 0; row < values.rows(); ++row) {
            const double value = values(row, column);
            const double target = wanted(row, column);
            const bool same = value == target || (std::isnan(value) && std::isnan(target));
            const double difference = same ? 0 : std::abs(value - target);
            const double error = std::isnan(difference) ? infinity : difference;
            if (error > worst) {
                worst = error;
                worst_row = row;
                worst_column = column;
            }
        }
    }
    if (worst <= tolerance) {
        return testing::AssertionSuccess() << "largest error " << worst;
    }
    return testing::AssertionFailure()
           << "row " << worst_row << ", column " << worst_column << " is "
           << values(worst_row, worst_column) << ", wanted " << wanted(worst_row, worst_column)
           << ", error " << worst << " above " << tolerance;
}

/// The same with the tolerance relative to the largest wanted value.
inline testing::AssertionResult relatively_near(const Eigen::ArrayXXd &values,
                                                const Eigen::ArrayXXd &wanted, double tolerance)
{
    return near(values, wanted, tolerance * (wanted.size() > 0 ? wanted.abs().maxCoeff() : 0));
}
