// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/disk.h"

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <io.h>
#include <system_error>
#include <windows.h>

namespace corvane
{

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
    std::error_code error;
    std::filesystem::last_write_time(path, std::filesystem::file_time_type::clock::now(), error);
    return error.default_error_condition().value();
}

} // namespace corvane
