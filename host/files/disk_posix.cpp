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

int touch(const std::filesystem::path &path)
{
    // Without a time: a server on the network takes its own.
    return utimensat(AT_FDCWD, path.c_str(), nullptr, AT_SYMLINK_NOFOLLOW) == 0 ? 0 : errno;
}

} // namespace corvane
