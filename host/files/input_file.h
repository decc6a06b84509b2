// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QFile>
#include <QString>

namespace corvane
{

/// Opens a regular file for reading, without a buffer. Throws InputError when there is no such
/// file, when it is a folder or a device, and when it may not be read.
void openInput(QFile &file);

/// A regular file, open for reading and mapped into memory as a whole. Nothing is read until it is
/// looked at. The mapping is private: writing through a pointer into it changes memory, never the
/// file. It must not be shortened by someone else while it is mapped.
class InputFile
{
public:
    /// Throws InputError as openInput does. An empty file opens, with a null data().
    explicit InputFile(const QString &path);

    InputFile(const InputFile &) = delete;
    InputFile &operator=(const InputFile &) = delete;

    QString path() const { return m_file.fileName(); }
    qint64 size() const { return m_size; }
    const uchar *data() const { return m_data; }

    /// The first `length` bytes, or all when there are fewer, without a copy: valid as long as this
    /// object.
    QByteArray head(qint64 length) const;

    /// All bytes of a file that is read as a whole, likewise without a copy. Throws InputError when
    /// there are more than `most`.
    QByteArray all(qint64 most) const;

private:
    QFile m_file;
    qint64 m_size = 0;
    const uchar *m_data = nullptr;
};

} // namespace corvane
