// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

#include <Eigen/Core>

namespace signals
{

/// At most six significant digits, with a decimal point in every locale; "n/a" for a NaN.
std::string number(double value);

/// "1 volume", "2 volumes".
std::string counted(Eigen::Index count, const std::string &noun);

/// "a, b, c".
std::string listed(const std::vector<std::string> &names);

} // namespace signals
