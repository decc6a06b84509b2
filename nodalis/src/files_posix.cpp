// SPDX-License-Identifier: GPL-3.0-or-later
#include "files.h"

namespace nodalis::detail
{

namespace fs = std::filesystem;

fs::path system_path(const std::string &utf8)
{
    return fs::u8path(utf8);
}

bool move_into_place(const fs::path &temporary, const fs::path &target)
{
    std::error_code error;
    if (fs::exists(target, error)) {
        fs::permissions(temporary, fs::status(target, error).permissions(), error);
    }
    if (!error) {
        fs::rename(temporary, target, error);
    }
    return !error;
}

void remove_file(const fs::path &file)
{
    std::error_code ignored;
    fs::remove(file, ignored);
}

} // namespace nodalis::detail
