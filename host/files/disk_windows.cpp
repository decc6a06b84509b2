// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/disk.h"

#include <QString>
#include <chrono>
#include <filesystem>
#include <io.h>
#include <system_error>

namespace corvane
{

bool isForFileNames(QChar c)
{
    return !QStringLiteral("<>:\"/\\|?*").contains(c) && c.category() != QChar::Other_Control;
}

int reserveRoom(int file, long long length)
{
    return _chsize_s(file, length);
}

int syncToDisk(int file)
{
    return _commit(file) == 0 ? 0 : errno;
}

int touch(const std::string &path)
{
    std::error_code error;
    std::filesystem::last_write_time(std::filesystem::u8path(path),
                                     std::filesystem::file_time_type::clock::now(), error);
    return error.default_error_condition().value();
}

} // namespace corvane
