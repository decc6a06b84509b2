// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

#include <Eigen/Core>

#include <nodalis/export.h>

namespace nodalis
{
inline namespace NODALIS_ABI
{

/// Writes a matrix of any shape as comma-separated values; true when the file is complete.
///
/// One line per row, a comma between values, a line feed after every line, no header. Each value
/// is the shortest decimal text that reads back as the same float; "nan", "inf" and "-inf" for
/// what is not finite. No locale is consulted. A matrix without rows is an empty file, rows
/// without columns are empty lines.
///
/// \param path UTF-8, on every system. ".csv" is added unless the path ends so already, in any
///        case of letters. A relative path starts at the current directory. A path without a file
///        name is refused.
///
/// The file appears as a whole or not at all: the text goes to a temporary file beside it, which
/// is then renamed. An existing file is replaced and hands its permissions to the new one; if
/// anything fails it stays as it was, nothing is left behind and the result is false. Never
/// throws. O(rows * columns).
NODALIS_API bool to_csv(const Eigen::MatrixXf &matrix, const std::string &path);

} // namespace NODALIS_ABI
} // namespace nodalis
