// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/output_folder.h"

#include "host/files/file_system.h"
#include "host/files/input_error.h"
#include "host/files/output_set.h"

#include <QFileInfo>

namespace corvane
{

namespace
{

namespace fs = std::filesystem;

[[noreturn]] void failOnFolder(const QString &path, const QString &found)
{
    throw InputError(path, QStringLiteral("output folder"), found,
                     QStringLiteral("a folder that can be written to"));
}

QStringList madeFor(const QString &path)
{
    if (path.isEmpty())
        failOnFolder(QStringLiteral("(no folder)"), QStringLiteral("an empty path"));
    if (QFileInfo::exists(path) && !QFileInfo(path).isDir())
        failOnFolder(path, QStringLiteral("a file"));
    try {
        return makeFolders(path);
    } catch (const std::system_error &error) {
        failOnFolder(path, wordsFor(error.code()));
    }
}

} // namespace

OutputFolder::OutputFolder(const QString &path, const QString &writer)
    : m_path(path), m_writer(writer), m_hidden(path, madeFor(path))
{
    std::error_code error;
    fs::create_directory(nativePath(m_hidden.path()), error);
    if (error)
        failOnFolder(path, wordsFor(error));
    hideFolder(m_hidden.path());
    removeLeftBehind(path, m_hidden);
    m_said = finishLeftSets(path, m_hidden);
}

QString OutputFolder::path(const QString &name) const
{
    return m_hidden.path() + QLatin1Char('/') + name;
}

QString OutputFolder::finalPath(const QString &name) const
{
    return m_path + QLatin1Char('/') + name;
}

QStringList OutputFolder::commit()
{
    return m_said + moveUp(m_hidden, m_path, m_writer);
}

} // namespace corvane
