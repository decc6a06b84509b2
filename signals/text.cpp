// SPDX-License-Identifier: GPL-3.0-or-later
#include "signals/text.h"

#include <charconv>
#include <cmath>

namespace signals
{

std::string number(double value)
{
    if (std::isnan(value)) {
        return "n/a";
    }
    char digits[32];
    const std::to_chars_result end =
        std::to_chars(digits, digits + sizeof digits, value, std::chars_format::general, 6);
    return {digits, end.ptr};
}

std::string counted(Eigen::Index count, const std::string &noun)
{
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

std::string listed(const std::vector<std::string> &names)
{
    std::string text;
    for (const std::string &name : names) {
        text += (text.empty() ? "" : ", ") + name;
    }
    return text;
}

} // namespace signals
