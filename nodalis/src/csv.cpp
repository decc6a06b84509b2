// SPDX-License-Identifier: GPL-3.0-or-later
#include <nodalis/csv.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <exception>
#include <filesystem>
#include <fstream>
#include <random>
#include <string_view>

#include "files.h"

namespace nodalis
{
namespace
{

namespace fs = std::filesystem;

/// A path that ends in a separator names a folder; one with a zero in it would be cut there.
bool names_a_file(const std::string &path)
{
    return path.find('\0') == std::string::npos && fs::u8path(path).has_filename();
}

bool ends_in_csv(const std::string &path)
{
    constexpr std::string_view ending = ".csv";
    const auto same_letter = [](char a, char b) {
        return (a >= 'A' && a <= 'Z' ? static_cast<char>(a - 'A' + 'a') : a) == b;
    };
    return path.size() >= ending.size() &&
           std::equal(path.end() - ending.size(), path.end(), ending.begin(), same_letter);
}

/// Appends the shortest text that reads back as the same float. The sign of a NaN is dropped.
void append_number(std::string &text, float value)
{
    if (std::isnan(value)) {
        text += "nan";
        return;
    }
    char digits[32];
    const std::to_chars_result end = std::to_chars(digits, digits + sizeof digits, value);
    text.append(digits, end.ptr);
}

std::string line(const Eigen::MatrixXf &matrix, Eigen::Index row)
{
    std::string text;
    for (Eigen::Index column = 0; column < matrix.cols(); ++column) {
        if (column > 0) {
            text += ',';
        }
        append_number(text, matrix(row, column));
    }
    text += '\n';
    return text;
}

/// A name that no other writer in the same folder uses, short whatever the target's name.
fs::path temporary_beside(const fs::path &target)
{
    std::random_device random;
    fs::path candidate;
    do {
        const std::string name =
            ".nodalis-" + std::to_string(random()) + "-" + std::to_string(random()) + ".tmp";
        candidate = target.parent_path() / name;
    } while (fs::exists(candidate));
    return candidate;
}

bool write_text(const Eigen::MatrixXf &matrix, const fs::path &file)
{
    std::ofstream stream(file, std::ios::binary | std::ios::trunc);
    for (Eigen::Index row = 0; stream && row < matrix.rows(); ++row) {
        const std::string text = line(matrix, row);
        stream.write(text.data(), static_cast<std::streamsize>(text.size()));
    }
    stream.close();
    return !stream.fail();
}

bool write_atomically(const Eigen::MatrixXf &matrix, const fs::path &target)
{
    const fs::path temporary = temporary_beside(target);
    if (write_text(matrix, temporary) && detail::move_into_place(temporary, target)) {
        return true;
    }
    detail::remove_file(temporary);
    return false;
}

} // namespace

inline namespace NODALIS_ABI
{

bool to_csv(const Eigen::MatrixXf &matrix, const std::string &path)
{
    try {
        return names_a_file(path) &&
               write_atomically(matrix,
                                detail::system_path(ends_in_csv(path) ? path : path + ".csv"));
    } catch (const std::exception &) {
        return false;
    }
}

} // namespace NODALIS_ABI
} // namespace nodalis
