// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

/// \file
/// Texts for tables and messages. No locale is consulted.

namespace statistics
{

/// The items with the separator between them.
std::string joined(const std::vector<std::string> &items, const std::string &separator = ", ");

/// A count with its noun: "1 subject", "2 subjects".
std::string counted(std::ptrdiff_t count, const std::string &noun);

/// The text without blanks at both ends.
std::string trimmed(const std::string &text);

/// The number that the whole text is (without blanks around it; a plus sign is allowed), or
/// nothing. "inf" and "nan" are no numbers.
std::optional<double> number_in(const std::string &text);

} // namespace statistics
