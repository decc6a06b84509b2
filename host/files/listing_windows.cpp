// SPDX-License-Identifier: GPL-3.0-or-later
//
// By the system's own functions: the standard library's iterator ends at paths of 260 characters
// here, and Qt takes a folder that cannot be read for an empty one.
#include "host/files/listing.h"

#include "host/files/file_system.h"
#include "host/files/input_error.h"

#include <QFileInfo>
#include <memory>
#include <windows.h>

namespace corvane
{

namespace
{

struct Close {
    void operator()(HANDLE handle) const { FindClose(handle); }
};

bool isOfKind(const WIN32_FIND_DATAW &entry, const QString &path, Listed kind)
{
    if (kind == Listed::Everything)
        return true;
    const bool isLink = (entry.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
    if (isLink)
        return kind == Listed::Folders ? QFileInfo(path).isDir() : QFileInfo(path).isFile();
    const bool isFolder = (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    return isFolder == (kind == Listed::Folders);
}

bool saysThatItIsNotThere(DWORD error)
{
    return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND ||
           error == ERROR_DIRECTORY || error == ERROR_INVALID_NAME ||
           error == ERROR_FILENAME_EXCED_RANGE;
}

[[noreturn]] void fail(const QString &folder, DWORD error)
{
    throw InputError(folder, QStringLiteral("listing"),
                     wordsFor({static_cast<int>(error), std::system_category()}),
                     QStringLiteral("a folder that can be read"));
}

} // namespace

QStringList entriesIn(const QString &folder, Listed kind)
{
    const QString below = folder + QLatin1Char('/');
    WIN32_FIND_DATAW entry;
    const HANDLE handle =
        FindFirstFileW(nativePath(below + QLatin1Char('*')).wstring().c_str(), &entry);
    if (handle == INVALID_HANDLE_VALUE) {
        const DWORD error = GetLastError();
        if (saysThatItIsNotThere(error))
            return {};
        fail(folder, error);
    }
    const std::unique_ptr<void, Close> search(handle);
    QStringList names;
    do {
        const QString name = QString::fromWCharArray(entry.cFileName);
        if (name != QLatin1String(".") && name != QLatin1String("..") &&
            isOfKind(entry, below + name, kind))
            names += name;
    } while (FindNextFileW(handle, &entry) != 0);
    if (const DWORD error = GetLastError(); error != ERROR_NO_MORE_FILES)
        fail(folder, error);
    return names;
}

} // namespace corvane
