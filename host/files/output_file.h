// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/hidden_path.h"

#include <QByteArray>
#include <QFile>
#include <QString>

namespace corvane
{

/// A file that appears whole or not at all: written beside its target under a hidden name and
/// renamed by commit(). Destroyed without a commit it leaves nothing, and an older file stays as it
/// was. A target may have a name as long as the file system takes.
class OutputFile
{
public:
    /// Throws InputError when nothing can be written there.
    explicit OutputFile(const QString &path);

    /// Throws InputError when the bytes do not fit.
    void write(const char *bytes, qint64 length);
    void write(const QByteArray &bytes) { write(bytes.constData(), bytes.size()); }

    /// Gives it its final length, with room on the disk. Throws InputError when there is none.
    void reserve(qint64 length);

    /// Reads or writes anywhere within that length. Throws InputError.
    void readAt(qint64 place, char *bytes, qint64 length);
    void writeAt(qint64 place, const char *bytes, qint64 length);

    /// Throws InputError when the last bytes or the renaming fail.
    void commit();

private:
    [[noreturn]] void fail(const QString &place, const QString &found,
                           const QString &expected) const;

    QString m_path;
    HiddenPath m_hidden;
    QFile m_file;
};

/// Writes the whole file. Throws InputError.
void writeFile(const QString &path, const QByteArray &bytes);

} // namespace corvane
