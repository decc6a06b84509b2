// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/scratch_folder.h"

#include "host/files/file_system.h"
#include "host/files/input_error.h"

#include <QDir>

namespace corvane
{

namespace fs = std::filesystem;

ScratchFolder::ScratchFolder() : m_hidden(QDir::tempPath())
{
    std::error_code error;
    fs::create_directory(nativePath(path()), error);
    if (!error)
        fs::permissions(nativePath(path()), fs::perms::owner_all, error);
    if (error)
        throw InputError(QDir::tempPath(), QStringLiteral("temporary files"), wordsFor(error),
                         QStringLiteral("a folder that can be written to"));
    removeLeftBehind(QDir::tempPath(), m_hidden);
}

QString ScratchFolder::filePath(const QString &name) const
{
    return path() + QLatin1Char('/') + name;
}

} // namespace corvane
