// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/provenance.h"

#include "host/files/input_error.h"
#include "host/files/text_check.h"

#include <QFileInfo>

#include <algorithm>

namespace corvane
{

namespace
{

struct Key {
    const char *name; ///< as in the files
    QString Provenance::*text;
};

constexpr Key keys[] = {{"subject", &Provenance::subject}, {"space name", &Provenance::space}};

/// The first file that knows it, which stands before `end`; `end` without one.
using Files = std::vector<FileProvenance>;
Files::const_iterator firstThatKnows(const Files &files, Files::const_iterator end, const Key &key)
{
    return std::find_if(files.begin(), end, [&](const FileProvenance &file) {
        return !(file.provenance.*key.text).isEmpty();
    });
}

} // namespace

std::optional<QString> provenanceFault(const QString &text)
{
    if (text.size() > Provenance::longest)
        return QStringLiteral("%1 characters").arg(text.size());
    return nameFault(text);
}

QString provenanceRule()
{
    return QStringLiteral("at most %1 characters, none of them a control character")
        .arg(Provenance::longest);
}

QString ProvenanceMismatch::text() const
{
    return QStringLiteral("%1: its %2 is %3, that of %4 %5")
        .arg(printable(QFileInfo(file).fileName()), key, quoted(found),
             printable(QFileInfo(other).fileName()), quoted(expected));
}

std::vector<ProvenanceMismatch> mismatches(const std::vector<FileProvenance> &files)
{
    std::vector<ProvenanceMismatch> found;
    for (auto file = files.begin(); file != files.end(); ++file)
        for (const Key &key : keys) {
            const QString &text = file->provenance.*key.text;
            const auto other = firstThatKnows(files, file, key);
            if (text.isEmpty() || other == file || other->provenance.*key.text == text)
                continue;
            found.push_back({file->file, QLatin1String(key.name), text, other->file,
                             other->provenance.*key.text});
        }
    return found;
}

} // namespace corvane
