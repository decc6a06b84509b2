// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

#include <Eigen/Core>

namespace statistics
{

/// A question to a model: one row of weights on the columns of its design gives t, several give F.
struct Contrast {
    std::string name;
    /// Rows x columns of the design.
    Eigen::MatrixXd weights;
};

/// Reads a contrast such as `patients = 0.5*group[Patient] - age`.
///
/// `NAME = sum`, with rows of an F contrast separated by `;`. A summand is the name of a column of
/// the design as it stands there, with an optional factor and `*` before it. The longest name that
/// fits is taken, so that names may hold any character; a column that stands twice in a row is
/// added up.
///
/// \throws Error naming the columns there are, if a text names none of them; if the name or a row
///         is empty, all weights of a row are 0, or a weight is no number.
Contrast read_contrast(const std::string &text, const std::vector<std::string> &columns);

} // namespace statistics
