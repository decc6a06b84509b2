// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <Eigen/Core>
#include <gtest/gtest.h>

/// Compares with the wanted values, relative to the largest of them.
inline testing::AssertionResult near(const Eigen::ArrayXf &values, const Eigen::ArrayXd &wanted,
                                     double tolerance = 1e-6)
{
    if (values.size() != wanted.size()) {
        return testing::AssertionFailure()
               << values.size() << " values, " << wanted.size() << " wanted";
    }
    if (wanted.size() == 0) {
        return testing::AssertionSuccess();
    }
    const Eigen::ArrayXd error = (values.cast<double>() - wanted).abs();
    Eigen::Index worst = 0;
    const double largest_error = error.maxCoeff(&worst);
    // The comparison is written so that a NaN fails.
    if (error.allFinite() && largest_error <= tolerance * wanted.abs().maxCoeff()) {
        return testing::AssertionSuccess();
    }
    return testing::AssertionFailure()
           << "entry " << worst << " is " << values[worst] << ", wanted " << wanted[worst]
           << ", error " << largest_error << " at a largest value of " << wanted.abs().maxCoeff();
}

inline testing::AssertionResult near(float value, double wanted, double tolerance = 1e-6)
{
    return near(Eigen::ArrayXf::Constant(1, value), Eigen::ArrayXd::Constant(1, wanted), tolerance);
}
