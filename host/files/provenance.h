// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <optional>

namespace corvane
{

/// Whose data a file holds and in which space they lie. An empty text is unknown and contradicts
/// none. Each is one line of at most `longest` characters.
struct Provenance {
    static constexpr int longest = 255;

    QString subject; ///< "sub-01"
    QString space;   ///< "T1w" or the name of a template
};

/// What is wrong with one of the texts: "a control character (0a)", "300 characters". Unset when
/// nothing is.
std::optional<QString> provenanceFault(const QString &text);

/// What such a text may be, for messages.
QString provenanceRule();

} // namespace corvane
