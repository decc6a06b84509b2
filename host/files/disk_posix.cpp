// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/disk.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace corvane
{

void surviveFullFiles()
{
    std::signal(SIGXFSZ, SIG_IGN);
}

int reserveRoom(int file, long long length)
{
    return posix_fallocate(file, 0, length);
}

int syncToDisk(int file)
{
    // Some file systems do not know the call.
    const bool isDone = fdatasync(file) == 0 || errno == EINVAL || errno == ENOSYS;
    return isDone ? 0 : errno;
}

int faultOfReplacing(const std::filesystem::path &path)
{
    struct statx file {
    };
    constexpr unsigned wanted = STATX_UID | STATX_MODE;
    if (statx(AT_FDCWD, path.c_str(), AT_SYMLINK_NOFOLLOW, wanted, &file) != 0)
        return errno == ENOENT ? 0 : errno;
    if ((file.stx_attributes & (STATX_ATTR_IMMUTABLE | STATX_ATTR_APPEND)) != 0)
        return EPERM;
    struct statx folder {
    };
    if (statx(AT_FDCWD, (path.parent_path() / ".").c_str(), 0, wanted, &folder) != 0)
        return errno;
    const uid_t user = geteuid();
    const bool isSticky = (folder.stx_mode & S_ISVTX) != 0;
    const bool isOfOther = user != 0 && user != file.stx_uid && user != folder.stx_uid;
    return isSticky && isOfOther ? EPERM : 0;
}

int touch(const std::filesystem::path &path)
{
    // Without a time: a server on the network takes its own.
    return utimensat(AT_FDCWD, path.c_str(), nullptr, AT_SYMLINK_NOFOLLOW) == 0 ? 0 : errno;
}

} // namespace corvane
