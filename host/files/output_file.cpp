// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/output_file.h"

#include "host/files/input_error.h"

#include <QFileInfo>

namespace corvane
{

OutputFile::OutputFile(const QString &path) : m_file(path)
{
    const QString place = QStringLiteral("writing");
    const QString expected = QStringLiteral("a place where a file can be written");
    if (path.isEmpty())
        throw InputError(QStringLiteral("(no file)"), place, QStringLiteral("an empty path"),
                         expected);
    if (QFileInfo(path).isDir())
        throw InputError(path, place, QStringLiteral("a folder"), expected);
    // Without a buffer: QSaveFile::commit overlooks that its last bytes do not fit.
    if (!m_file.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        throw InputError(path, place, m_file.errorString(), expected);
}

void OutputFile::write(const char *bytes, qint64 length)
{
    // The first write to a disk that runs full is a short one; the second says why.
    while (length > 0) {
        const qint64 written = m_file.write(bytes, length);
        if (written <= 0)
            throw InputError(m_file.fileName(), QStringLiteral("writing"), m_file.errorString(),
                             QStringLiteral("room for %1 more bytes").arg(length));
        bytes += written;
        length -= written;
    }
}

void OutputFile::commit()
{
    if (!m_file.commit())
        throw InputError(m_file.fileName(), QStringLiteral("finishing"), m_file.errorString(),
                         QStringLiteral("a file that can be completed"));
}

void writeFile(const QString &path, const QByteArray &bytes)
{
    OutputFile file(path);
    file.write(bytes);
    file.commit();
}

} // namespace corvane
