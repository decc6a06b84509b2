// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/output_folder.h"

#include "host/files/file_system.h"
#include "host/files/input_error.h"

#include <QDir>
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
    if (QFileInfo::exists(path) && !QFileInfo(path).isDir())
        failOnFolder(path, QStringLiteral("a file"));
    try {
        return makeFolders(path);
    } catch (const std::system_error &error) {
        failOnFolder(path, wordsFor(error.code()));
    }
}

} // namespace

OutputFolder::OutputFolder(const QString &path) : m_path(path), m_hidden(path, madeFor(path))
{
    std::error_code error;
    fs::create_directory(nativePath(m_hidden.path()), error);
    if (error)
        failOnFolder(path, wordsFor(error));
    hideFolder(m_hidden.path());
    removeLeftBehind(path, m_hidden);
}

QString OutputFolder::path(const QString &name) const
{
    return m_hidden.path() + QLatin1Char('/') + name;
}

QString OutputFolder::finalPath(const QString &name) const
{
    return m_path + QLatin1Char('/') + name;
}

void OutputFolder::commit()
{
    const auto lock = holdSignals();
    const QStringList names = QDir(m_hidden.path()).entryList(QDir::Files | QDir::Hidden);
    for (const QString &name : names) {
        if (const std::error_code error = renameOver(path(name), finalPath(name))) {
            throw InputError(finalPath(name), QStringLiteral("writing"), wordsFor(error),
                             QStringLiteral("a file that can be replaced"));
        }
    }
}

} // namespace corvane
