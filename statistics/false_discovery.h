// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <Eigen/Core>

namespace statistics
{

/// The q values of Benjamini and Hochberg: q_(i) = min over j >= i of p_(j) E / j, at most 1, p
/// sorted upward, E their number. Rejecting where q <= 0.05 keeps the expected share of false
/// discoveries below 5 % if the tests are independent or positively dependent.
///
/// Values that are not a number are not tests: they stay so and do not count in E.
///
/// Source: Benjamini and Hochberg 1995, J R Stat Soc B 57:289,
/// doi:10.1111/j.2517-6161.1995.tb02031.x.
///
/// \throws Error if a p lies outside 0 to 1.
Eigen::ArrayXd benjamini_hochberg(const Eigen::ArrayXd &p);

} // namespace statistics
