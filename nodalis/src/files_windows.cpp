// SPDX-License-Identifier: GPL-3.0-or-later
#include "files.h"

#include <windows.h>

namespace nodalis::detail
{

namespace fs = std::filesystem;

fs::path system_path(const std::string &utf8)
{
    // A path as people write it may have 260 letters; the temporary file's name takes some of them.
    constexpr std::size_t longest = 200;
    const fs::path path = fs::u8path(utf8);
    const std::wstring full = fs::absolute(path).lexically_normal().make_preferred().native();
    if (full.size() <= longest || full.compare(0, 4, L"\\\\?\\") == 0) {
        return path;
    }
    const bool on_share = full.compare(0, 2, L"\\\\") == 0;
    return fs::path(on_share ? L"\\\\?\\UNC" + full.substr(1) : L"\\\\?\\" + full);
}

bool move_into_place(const fs::path &temporary, const fs::path &target)
{
    // Another writer, or one that looks through every new file, holds the target for a moment.
    constexpr int most_tries = 50;
    constexpr DWORD milliseconds_between = 20;
    for (int tries = 0; tries < most_tries; ++tries) {
        if (MoveFileExW(temporary.c_str(), target.c_str(), MOVEFILE_REPLACE_EXISTING) != 0) {
            return true;
        }
        const DWORD error = GetLastError();
        if (error != ERROR_ACCESS_DENIED && error != ERROR_SHARING_VIOLATION) {
            return false;
        }
        Sleep(milliseconds_between);
    }
    return false;
}

void remove_file(const fs::path &file)
{
    DeleteFileW(file.c_str());
}

} // namespace nodalis::detail
