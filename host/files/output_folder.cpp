// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/output_folder.h"

#include "host/files/input_error.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <filesystem>
#include <system_error>

namespace corvane
{

namespace
{

std::filesystem::path nativePath(const QString &path)
{
    return std::filesystem::u8path(path.toStdString());
}

} // namespace

OutputFolder::OutputFolder(const QString &path) : m_path(path), m_made(!QFileInfo::exists(path))
{
    const bool isThere = m_made ? QDir().mkpath(path) : QFileInfo(path).isDir();
    if (isThere)
        m_hidden.emplace(path + QStringLiteral("/.corvane-XXXXXX"));
    if (!m_hidden || !m_hidden->isValid()) {
        const QString found =
            m_hidden ? m_hidden->errorString() : QStringLiteral("a place where none can be made");
        throw InputError(path, QStringLiteral("output folder"), found,
                         QStringLiteral("a folder that can be written to"));
    }
}

OutputFolder::~OutputFolder()
{
    m_hidden.reset();
    if (m_made)
        QDir().rmdir(m_path); // stays when there is anything in it
}

QString OutputFolder::path(const QString &name) const
{
    return m_hidden->filePath(name);
}

QString OutputFolder::finalPath(const QString &name) const
{
    return m_path + QLatin1Char('/') + name;
}

void OutputFolder::commit()
{
    const QStringList names = QDir(m_hidden->path()).entryList(QDir::Files | QDir::Hidden);
    for (const QString &name : names) {
        std::error_code error;
        std::filesystem::rename(nativePath(path(name)), nativePath(finalPath(name)), error);
        if (error) {
            throw InputError(finalPath(name), QStringLiteral("writing"),
                             QString::fromStdString(error.message()),
                             QStringLiteral("a file that can be replaced"));
        }
    }
}

} // namespace corvane
