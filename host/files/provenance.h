// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <optional>
#include <vector>

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

/// A file and whose data it holds.
struct FileProvenance {
    QString file;
    Provenance provenance;
};

/// A file that says of subject or space another thing than one before it.
struct ProvenanceMismatch {
    QString file;
    QString key; ///< "subject", "space name"
    QString found;
    QString other; ///< the file before it
    QString expected;

    /// "b.vtc: its subject is "sub-02", that of a.vmr "sub-01"", with files by their bare names.
    QString text() const;
};

/// Each file is compared with the first of those before it that know what it says.
std::vector<ProvenanceMismatch> mismatches(const std::vector<FileProvenance> &files);

} // namespace corvane
