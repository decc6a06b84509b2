// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/mapped_file.h"

#include "host/files/input_error.h"
#include "host/files/input_file.h"

#include <algorithm>

namespace corvane
{

MappedFile::MappedFile(const QString &path) : m_file(path)
{
    openInput(m_file);
    m_size = m_file.size();
    if (m_size == 0)
        return;
    m_data = m_file.map(0, m_size, QFileDevice::MapPrivateOption);
    if (m_data == nullptr)
        throw InputError(path, QStringLiteral("mapping %1 bytes").arg(m_size), m_file.errorString(),
                         QStringLiteral("a file that can be mapped"));
    m_guard.emplace(m_data, static_cast<std::size_t>(m_size));
}

QByteArray MappedFile::head(qint64 length) const
{
    const qint64 available = std::min(length, m_size);
    return QByteArray::fromRawData(reinterpret_cast<const char *>(m_data),
                                   static_cast<int>(available));
}

bool MappedFile::isIntact() const
{
    // What is left of its last page reads as zeros without the guard's help.
    return !(m_guard && m_guard->wasMissed()) && m_file.size() >= m_size;
}

void MappedFile::requireIntact() const
{
    if (isIntact())
        return;
    const qint64 left = m_file.size();
    throw InputError(path(), QStringLiteral("reading"),
                     left < m_size
                         ? QStringLiteral("%1 bytes: it became shorter while it was open").arg(left)
                         : QStringLiteral("bytes that were gone when they were read"),
                     QStringLiteral("%1 bytes").arg(m_size));
}

} // namespace corvane
