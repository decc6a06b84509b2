// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/file_system.h"

#include <QDir>
#include <QFileInfo>
#include <windows.h>

namespace corvane
{

namespace fs = std::filesystem;

fs::path nativePath(const QString &path)
{
    // A path as people write it may have 260 letters, that of a folder twelve less.
    constexpr int longest = 240;
    const QString native = QDir::toNativeSeparators(QDir(path).absolutePath());
    if (native.size() <= longest || native.startsWith(QLatin1String("\\\\?\\")))
        return native.toStdWString();
    if (native.startsWith(QLatin1String("\\\\")))
        return (QStringLiteral("\\\\?\\UNC") + native.mid(1)).toStdWString();
    return (QStringLiteral("\\\\?\\") + native).toStdWString();
}

bool isForFileNames(QChar c)
{
    return !QStringLiteral("<>:\"/\\|?*").contains(c) && c.category() != QChar::Other_Control;
}

std::error_code renameOver(const QString &from, const QString &target)
{
    // Another writer, or one that looks through every new file, holds the target for a moment.
    constexpr int mostTries = 50;
    constexpr DWORD millisecondsBetween = 20;
    const fs::path source = nativePath(from);
    const fs::path place = nativePath(target);
    DWORD error = ERROR_SUCCESS;
    for (int tries = 0; tries < mostTries; ++tries) {
        if (MoveFileExW(source.c_str(), place.c_str(),
                        MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0)
            return {};
        error = GetLastError();
        if (error != ERROR_ACCESS_DENIED && error != ERROR_SHARING_VIOLATION)
            break;
        Sleep(millisecondsBetween);
    }
    return {static_cast<int>(error), std::system_category()};
}

void removeAll(const QString &path)
{
    // By Qt: the standard library here does not find what has a long path.
    if (QFileInfo(path).isDir())
        QDir(path).removeRecursively();
    else
        QFile::remove(path);
}

void hideFolder(const QString &path)
{
    SetFileAttributesW(nativePath(path).c_str(), FILE_ATTRIBUTE_HIDDEN);
}

QString wordsFor(const std::error_code &error)
{
    // The standard library's own words are in the code page of the user.
    return error.category() == std::system_category()
               ? qt_error_string(error.value())
               : QString::fromLocal8Bit(error.message().c_str());
}

} // namespace corvane
