// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

#include <optional>

namespace corvane
{

/// Opens a regular file for reading, without a buffer. Throws InputError when there is no such
/// file, when it is a folder or a device, when it may not be read, and when it belongs to a set of
/// files of which a command that was ended has put only some in their place.
void openInput(QFile &file);

/// All bytes of a small file of our own; unset when it is not there. Throws InputError when it is
/// there and cannot be read, which is another thing.
std::optional<QByteArray> bytesIfThere(const QString &path);

/// A regular file, open for reading into memory.
class InputFile
{
public:
    /// Throws InputError as openInput does.
    explicit InputFile(const QString &path);

    InputFile(const InputFile &) = delete;
    InputFile &operator=(const InputFile &) = delete;

    QString path() const { return m_file.fileName(); }

    /// Its length when it was opened.
    qint64 size() const { return m_size; }

    /// Reads its first `length` bytes, or all when there are fewer. Throws InputError.
    QByteArray head(qint64 length) const;

    /// All bytes of a file that is read as a whole, likewise without a copy. Throws InputError when
    /// there are more than `most`.
    QByteArray all(qint64 most) const;

private:
    mutable QFile m_file;
    qint64 m_size = 0;
};

} // namespace corvane
