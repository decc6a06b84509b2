// SPDX-License-Identifier: GPL-3.0-or-later
#include "statistics/text.h"

#include <charconv>
#include <cmath>

namespace statistics
{

std::string joined(const std::vector<std::string> &items, const std::string &separator)
{
    std::string text;
    for (std::size_t i = 0; i < items.size(); ++i) {
        text += (i == 0 ? "" : separator) + items[i];
    }
    return text;
}

std::string counted(std::ptrdiff_t count, const std::string &noun)
{
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

std::string trimmed(const std::string &text)
{
    const char *const blanks = " \t\r\n";
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::optional<double> number_in(const std::string &text)
{
    std::string digits = trimmed(text);
    if (digits.size() > 1 && digits[0] == '+' && digits[1] != '-') {
        digits.erase(0, 1);
    }
    double value = 0.0;
    const char *const end = digits.data() + digits.size();
    const std::from_chars_result read = std::from_chars(digits.data(), end, value);
    if (read.ec != std::errc() || read.ptr != end || !std::isfinite(value)) {
        return std::nullopt;
    }
    return value;
}

} // namespace statistics
