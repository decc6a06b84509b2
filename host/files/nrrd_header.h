// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/input_error.h"
#include "host/files/provenance.h"

#include <QHash>
#include <QStringList>
#include <array>
#include <vector>

/// @file
/// The attached text header of a NRRD file, as far as the host's own files use it: every field and
/// key is known in advance and stands there at most once.

namespace corvane
{

/// A field or key whose value breaks a rule of its format.
struct BrokenRule {
    const char *field;
    QString found;
    QString expected;
};

class NrrdHeader
{
public:
    /// Parses the header at the beginning of a file. `bytes` holds at least the first `longest`
    /// bytes of the file, or all of it. `fields` and `keys` are the names that may occur. Throws
    /// InputError for anything else.
    NrrdHeader(const QString &path, const QByteArray &bytes, const QStringList &fields,
               const QStringList &keys);

    /// Longest header that is read, in bytes.
    static constexpr int longest = 1 << 16;

    /// Offset of the data: the length of the header with its empty line.
    qint64 length() const { return m_length; }

    bool has(const QString &name) const { return m_entries.contains(name); }

    /// Text of a field or key. Throws InputError when the header has none of this name.
    QString text(const QString &name) const;

    /// The field's words, of which there must be `count`.
    QStringList words(const QString &name, int count) const;

    /// Whole numbers, each from `lowest` to `highest`.
    std::vector<int> wholeNumbers(const QString &name, int count, int lowest, int highest) const;
    int wholeNumber(const QString &name, int lowest, int highest) const;

    /// A vector "(x,y,z)" of finite numbers; `text` is one word of the field.
    std::array<double, 3> vector(const QString &name, const QString &text) const;

    /// Requires this very text, blanks simplified.
    void require(const QString &name, const QString &text) const;

    /// The version of the file's format, a key of this name: 1, which has none of `secondKeys`, or
    /// 2.
    int version(const QString &name, const QStringList &secondKeys) const;

    /// Subject and space, keys of the second version that may be missing.
    Provenance provenance() const;

    /// Throws the error for a field whose text is not what it should be.
    [[noreturn]] void fail(const QString &name, const QString &expected) const;
    [[noreturn]] void fail(const QString &name, const QString &found,
                           const QString &expected) const;
    [[noreturn]] void fail(const BrokenRule &broken) const;

private:
    struct Entry {
        int line;
        QString text;
    };

    void addLine(const QByteArray &line, int number, const QStringList &fields,
                 const QStringList &keys);

    QString m_path;
    QHash<QString, Entry> m_entries;
    qint64 m_length = 0;
};

/// The names of the keys for subject and space.
QStringList provenanceKeys();

/// The first rule that subject and space break.
std::optional<BrokenRule> brokenRule(const Provenance &provenance);

/// A header under construction; lines come out in the order of the calls.
class NrrdWriter
{
public:
    NrrdWriter &field(const char *name, const QByteArray &text);
    NrrdWriter &key(const char *name, const QString &text);

    /// Subject and space, those that are known.
    NrrdWriter &keys(const Provenance &provenance);

    /// The header with its empty line, filled with a comment line to a multiple of 64 bytes, so
    /// that samples in a mapped file are aligned.
    QByteArray finished() const;

private:
    QByteArray m_lines = "NRRD0004\n";
};

} // namespace corvane
