// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/filled_folder.h"

#include "host/files/file_system.h"
#include "host/files/input_error.h"

#include <QFileInfo>

namespace corvane
{

namespace
{

namespace fs = std::filesystem;

[[noreturn]] void failOn(const QString &folder, const QString &found, const QString &expected)
{
    throw InputError(folder, QStringLiteral("output folder"), found, expected);
}

QStringList madeFor(const QString &folder, const QString &expected)
{
    if (folder.isEmpty())
        failOn(QStringLiteral("(no folder)"), QStringLiteral("an empty path"), expected);
    if (QFileInfo::exists(folder) && !QFileInfo(folder).isDir())
        failOn(folder, QStringLiteral("a file"), expected);
    try {
        return makeFolders(folder);
    } catch (const std::system_error &error) {
        failOn(folder, wordsFor(error.code()), expected);
    }
}

} // namespace

FilledFolder::FilledFolder(const QString &folder, const QString &expected)
    : m_folder(folder), m_expected(expected), m_hidden(folder, madeFor(folder, expected))
{
    std::error_code error;
    fs::create_directory(nativePath(path()), error);
    if (error)
        fail(wordsFor(error));
    hideFolder(path());
    removeLeftBehind(folder, m_hidden);
}

QString FilledFolder::path(const QString &name) const
{
    return path() + QLatin1Char('/') + name;
}

void FilledFolder::fail(const QString &found) const
{
    failOn(m_folder, found, m_expected);
}

} // namespace corvane
