// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <cstddef>

/// @file
/// Texts in the fields of records: always terminated, cut between two characters. What had to be
/// changed is said in the log, where `what` says which text it is ("The name of VOI 3").

namespace corvane
{

/// What stays of a text that is longer than its field. Paths keep their end, since a plugin shows
/// their file name.
enum class Keep { Beginning, End };

void putUtf8(char *field, std::size_t size, const QString &text, Keep keep, const QString &what);

/// '?' for each character that Latin-1 lacks.
void putLatin1(char *field, std::size_t size, const QString &text, Keep keep, const QString &what);

template <std::size_t size>
void putUtf8(char (&field)[size], const QString &text, Keep keep, const QString &what)
{
    putUtf8(field, size, text, keep, what);
}

template <std::size_t size>
void putLatin1(char (&field)[size], const QString &text, Keep keep, const QString &what)
{
    putLatin1(field, size, text, keep, what);
}

} // namespace corvane
