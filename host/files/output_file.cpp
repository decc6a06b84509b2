// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/output_file.h"

#include "host/files/disk.h"
#include "host/files/file_system.h"
#include "host/files/input_error.h"

#include <QFileInfo>

namespace corvane
{

namespace
{

QString wordsForNumber(int error)
{
    return wordsFor(std::error_code(error, std::generic_category()));
}

} // namespace

OutputFile::OutputFile(const QString &path)
    : m_path(path), m_hidden(QFileInfo(path).path()), m_file(m_hidden.path())
{
    const QString place = QStringLiteral("writing");
    const QString expected = QStringLiteral("a place where a file can be written");
    if (path.isEmpty())
        throw InputError(QStringLiteral("(no file)"), place, QStringLiteral("an empty path"),
                         expected);
    // A name that is too long is told now, not when all is written.
    std::error_code error;
    if (std::filesystem::is_directory(nativePath(path), error))
        fail(place, QStringLiteral("a folder"), expected);
    if (error && error != std::errc::no_such_file_or_directory)
        fail(place, wordsFor(error), expected);
    if (!m_file.open(QIODevice::ReadWrite | QIODevice::NewOnly | QIODevice::Unbuffered))
        fail(place, m_file.errorString(), expected);
}

void OutputFile::write(const char *bytes, qint64 length)
{
    // The first write to a disk that runs full is a short one; the second says why.
    while (length > 0) {
        const qint64 written = m_file.write(bytes, length);
        if (written <= 0)
            fail(QStringLiteral("writing"), m_file.errorString(),
                 QStringLiteral("room for %1 more bytes").arg(length));
        bytes += written;
        length -= written;
    }
}

void OutputFile::reserve(qint64 length)
{
    if (const int error = reserveRoom(m_file.handle(), length))
        fail(QStringLiteral("writing"), wordsForNumber(error),
             QStringLiteral("room for %1 bytes").arg(length));
}

void OutputFile::readAt(qint64 place, char *bytes, qint64 length)
{
    if (!m_file.seek(place) || m_file.read(bytes, length) != length)
        fail(QStringLiteral("reading back"), m_file.errorString(),
             QStringLiteral("what was written before"));
}

void OutputFile::writeAt(qint64 place, const char *bytes, qint64 length)
{
    if (!m_file.seek(place))
        fail(QStringLiteral("writing"), m_file.errorString(),
             QStringLiteral("room for %1 more bytes").arg(length));
    write(bytes, length);
}

void OutputFile::commit()
{
    const QString expected = QStringLiteral("a file that can be completed");
    // On the disk before it gets its name, so that the name never stands for half a file.
    if (const int error = syncToDisk(m_file.handle()))
        fail(QStringLiteral("finishing"), wordsForNumber(error), expected);
    m_file.close();
    if (m_file.error() != QFileDevice::NoError)
        fail(QStringLiteral("finishing"), m_file.errorString(), expected);
    if (const std::error_code error = m_hidden.renameTo(m_path))
        fail(QStringLiteral("finishing"), wordsFor(error), expected);
}

void OutputFile::fail(const QString &place, const QString &found, const QString &expected) const
{
    throw InputError(m_path, place, found, expected);
}

void writeFile(const QString &path, const QByteArray &bytes)
{
    OutputFile file(path);
    file.write(bytes);
    file.commit();
}

} // namespace corvane
