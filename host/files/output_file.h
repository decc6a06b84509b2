// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QSaveFile>
#include <QString>

namespace corvane
{

/// A file that appears whole or not at all: written beside its target under another name and
/// renamed by commit(). Destroyed without a commit it leaves nothing, and an older file stays as it
/// was.
class OutputFile
{
public:
    /// Throws InputError when nothing can be written there.
    explicit OutputFile(const QString &path);

    /// Throws InputError when the bytes do not fit.
    void write(const char *bytes, qint64 length);
    void write(const QByteArray &bytes) { write(bytes.constData(), bytes.size()); }

    /// Throws InputError when the last bytes or the renaming fail.
    void commit();

private:
    QSaveFile m_file;
};

/// Writes the whole file. Throws InputError.
void writeFile(const QString &path, const QByteArray &bytes);

} // namespace corvane
