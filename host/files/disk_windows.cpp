// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/disk.h"

#include <cerrno>
#include <io.h>
#include <system_error>
#include <windows.h>

namespace corvane
{

void surviveFullFiles() {} // they are an error here anyway

int reserveRoom(int file, long long length)
{
    return _chsize_s(file, length);
}

int syncToDisk(int file)
{
    return _commit(file) == 0 ? 0 : errno;
}

int faultOfReplacing(const std::filesystem::path &path)
{
    // Another program may hold it open.
    const HANDLE file =
        CreateFileW(path.c_str(), DELETE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                    nullptr, OPEN_EXISTING, 0, nullptr);
    if (file != INVALID_HANDLE_VALUE) {
        CloseHandle(file);
        return 0;
    }
    return GetLastError() == ERROR_FILE_NOT_FOUND ? 0 : EACCES;
}

int touch(const std::filesystem::path &path)
{
    // The standard library here does not touch folders.
    const HANDLE file = CreateFileW(path.c_str(), FILE_WRITE_ATTRIBUTES,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                    OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    FILETIME now;
    GetSystemTimeAsFileTime(&now);
    const bool isDone =
        file != INVALID_HANDLE_VALUE && SetFileTime(file, nullptr, nullptr, &now) != 0;
    const auto error = static_cast<int>(GetLastError());
    CloseHandle(file);
    return isDone ? 0 : std::system_category().default_error_condition(error).value();
}

} // namespace corvane
