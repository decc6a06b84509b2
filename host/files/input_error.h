// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <stdexcept>

namespace corvane
{

/// A file that cannot be used as it is: bad content, unreadable, or not writable.
/// what() is one line of UTF-8, "FILE: PLACE: found X, expected Y", whatever bytes the file held. A
/// file that is still at a hidden path is named as its user knows it.
class InputError : public std::runtime_error
{
public:
    InputError(const QString &file, const QString &place, const QString &found,
               const QString &expected);
};

/// The text in one line for a message: control characters as "\n", "\t" or "\xNN", and no more than
/// `longest` characters, with "..." behind a text that was cut.
QString printable(const QString &text, int longest = 80);

/// Likewise for bytes, read as UTF-8; bytes that are none show as "\xNN".
QString printable(const QByteArray &bytes, int longest = 80);

/// The same between double quotation marks.
QString quoted(const QString &text, int longest = 80);
QString quoted(const QByteArray &bytes, int longest = 80);

} // namespace corvane
