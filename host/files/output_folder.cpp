// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/output_folder.h"

#include "host/files/output_set.h"

namespace corvane
{

OutputFolder::OutputFolder(const QString &path, const QString &writer)
    : m_folder(path, QStringLiteral("a folder that can be written to")), m_writer(writer),
      m_said(finishLeftSets(path, m_folder.hidden()))
{
}

QString OutputFolder::finalPath(const QString &name) const
{
    return m_folder.folder() + QLatin1Char('/') + name;
}

QStringList OutputFolder::commit()
{
    return m_said + moveUp(m_folder.hidden(), m_folder.folder(), m_writer);
}

} // namespace corvane
