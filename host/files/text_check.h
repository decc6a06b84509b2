// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

/// @file
/// Strict readings of the small texts that files are made of. Nothing is trimmed or guessed.

namespace corvane
{

/// The bytes as text, unset when they are not UTF-8.
std::optional<QString> fromStrictUtf8(const QByteArray &bytes);

/// A whole number: an optional minus sign and decimal digits. Unset for anything else and for
/// numbers beyond 64 bits.
std::optional<qint64> wholeNumber(const QString &text);

/// A finite decimal number with a point, as every C locale writes it. Unset for anything else.
std::optional<double> finiteNumber(const QString &text);

/// What is wrong with a text as a name ("a control character at position 3"), unset when nothing
/// is. Names hold neither control characters nor halves of characters.
std::optional<QString> nameFault(const QString &name);

/// The shortest decimal that reads back as the same number.
QByteArray shortestDecimal(double number);

/// A number for people, with that many decimals; a large one in three digits, as "1.15e31".
QString readableNumber(double number, int decimals);

} // namespace corvane
