// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/page_guard.h"

#include <QByteArray>
#include <QFile>
#include <QString>

#include <optional>

namespace corvane
{

/// A regular file, mapped into memory as a whole. Nothing is read until it is looked at. The
/// mapping is private: writing through a pointer into it changes memory, never the file.
///
/// Other programs may shorten the file meanwhile. What is missing then reads as zeros: whoever has
/// read asks afterwards whether it was all there.
class MappedFile
{
public:
    /// Throws InputError as openInput does. An empty file opens, with a null data().
    explicit MappedFile(const QString &path);

    MappedFile(const MappedFile &) = delete;
    MappedFile &operator=(const MappedFile &) = delete;

    QString path() const { return m_file.fileName(); }
    qint64 size() const { return m_size; }
    const uchar *data() const { return m_data; }

    /// The first `length` bytes, or all when there are fewer, without a copy: valid as long as this
    /// object.
    QByteArray head(qint64 length) const;

    /// Whether everything that was read so far was in the file, and the file is as long as it was.
    bool isIntact() const;

    /// Throws InputError unless it is intact.
    void requireIntact() const;

private:
    QFile m_file;
    qint64 m_size = 0;
    const uchar *m_data = nullptr;
    std::optional<PageGuard> m_guard;
};

} // namespace corvane
