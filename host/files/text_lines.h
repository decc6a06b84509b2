// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <vector>

namespace corvane
{

struct TextLine {
    int number; ///< in the file, from 1
    QString text;
};

/// The lines of a text in UTF-8 that hold more than blanks, without what ends them. Throws
/// InputError when the file cannot be read, is too large for a table, or is no text.
std::vector<TextLine> readTextLines(const QString &path);

/// Whether a line is a comment: it begins with "#", behind blanks or not.
bool isComment(const QString &line);

} // namespace corvane
