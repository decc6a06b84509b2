// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/input_file.h"

#include "host/files/input_error.h"
#include "host/files/limits.h"
#include "host/files/output_set.h"

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
    refuseUnfinished(path);
    const QFileInfo info(path);
    if (info.isDir())
        throw InputError(path, place, QStringLiteral("a folder"), expected);
    // A pipe or device would block or never end.
    if (info.exists() && !info.isFile())
        throw InputError(path, place, QStringLiteral("something that is no plain file"), expected);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        throw InputError(path, place, file.errorString(), expected);
}

std::optional<QByteArray> bytesIfThere(const QString &path)
{
    QFile file(path);
    const bool isOpen = file.open(QIODevice::ReadOnly);
    if (!isOpen && !QFileInfo::exists(path))
        return std::nullopt;
    QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError)
        throw InputError(path, QStringLiteral("reading"), file.errorString(),
                         QStringLiteral("a readable file"));
    return bytes;
}

InputFile::InputFile(const QString &path) : m_file(path)
{
    openInput(m_file);
    m_size = m_file.size();
}

QByteArray InputFile::head(qint64 length) const
{
    const qint64 wanted = std::min(length, m_size);
    QByteArray bytes;
    m_file.seek(0);
    // One reading may give less than there is.
    while (bytes.size() < wanted) {
        const QByteArray more = m_file.read(wanted - bytes.size());
        if (more.isEmpty())
            break;
        bytes += more;
    }
    if (bytes.size() < wanted)
        throw InputError(
            path(), QStringLiteral("reading"),
            m_file.error() == QFileDevice::NoError
                ? QStringLiteral("%1 bytes: it became shorter while it was open").arg(bytes.size())
                : m_file.errorString(),
            QStringLiteral("%1 bytes").arg(wanted));
    return bytes;
}

QByteArray InputFile::all(qint64 most) const
{
    requireAtMost(m_size, most, QStringLiteral("bytes"), path(), QStringLiteral("content"));
    return head(m_size);
}

} // namespace corvane
