// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/input_file.h"

#include "host/files/input_error.h"
#include "host/files/limits.h"

#include <QFileInfo>
#include <algorithm>

namespace corvane
{

void openInput(QFile &file)
{
    const QString path = file.fileName();
    const QString place = QStringLiteral("opening");
    const QString expected = QStringLiteral("a readable file");
    if (path.isEmpty())
        throw InputError(QStringLiteral("(no file)"), place, QStringLiteral("an empty path"),
                         expected);
    const QFileInfo info(path);
    if (info.isDir())
        throw InputError(path, place, QStringLiteral("a folder"), expected);
    // A pipe or device would block or never end.
    if (info.exists() && !info.isFile())
        throw InputError(path, place, QStringLiteral("something that is no plain file"), expected);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        throw InputError(path, place, file.errorString(), expected);
}

InputFile::InputFile(const QString &path) : m_file(path)
{
    openInput(m_file);
    m_size = m_file.size();
    if (m_size == 0)
        return;
    m_data = m_file.map(0, m_size, QFileDevice::MapPrivateOption);
    if (m_data == nullptr)
        throw InputError(path, QStringLiteral("mapping %1 bytes").arg(m_size), m_file.errorString(),
                         QStringLiteral("a file that can be mapped"));
}

QByteArray InputFile::head(qint64 length) const
{
    const qint64 available = std::min(length, m_size);
    return QByteArray::fromRawData(reinterpret_cast<const char *>(m_data),
                                   static_cast<int>(available));
}

QByteArray InputFile::all(qint64 most) const
{
    requireAtMost(m_size, most, QStringLiteral("bytes"), path(), QStringLiteral("content"));
    return head(m_size);
}

} // namespace corvane
