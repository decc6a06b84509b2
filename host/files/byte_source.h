// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <memory>

namespace corvane
{

/// The bytes of a file from its first to its last, unpacked when the file is a gzip file. Holds a
/// small buffer, whatever the size of the file.
class ByteSource
{
public:
    virtual ~ByteSource() = default;

    /// Reads `length` bytes, fewer only where the data end. Throws InputError when the file cannot
    /// be read or its packed data are damaged or cut short.
    virtual qint64 read(void *bytes, qint64 length) = 0;

    /// The most bytes that can come in all, as far as the size of the file tells: its own size, or
    /// the most that gzip can pack into it.
    virtual qint64 mostBytes() const = 0;
};

/// Opens a file; what is inside decides whether it is unpacked, not its name. A gzip file may have
/// several members, and zeros behind the last one. Throws InputError.
std::unique_ptr<ByteSource> openBytes(const QString &path);

} // namespace corvane
