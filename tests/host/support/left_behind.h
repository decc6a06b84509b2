// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/file_system.h"
#include "host/files/hidden_name.h"

#include <QFile>

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

/// @file
/// Processes that left something behind, for the tests of who clears it away.

namespace corvane
{

/// A process of this machine that has ended.
inline ProcessIdentity goneProcess()
{
    ProcessIdentity process = thisProcess();
    const pid_t child = fork();
    if (child == 0)
        _exit(0);
    EXPECT_EQ(waitpid(child, nullptr, 0), child);
    process.number = child;
    return process;
}

/// A process of another machine.
inline ProcessIdentity processElsewhere()
{
    ProcessIdentity process = thisProcess();
    process.host = "elsewhere.00000000";
    return process;
}

/// Makes a file or folder look as if it had last been touched that long ago.
inline void setAge(const QString &path, std::chrono::seconds age)
{
    std::filesystem::last_write_time(nativePath(path),
                                     std::filesystem::file_time_type::clock::now() - age);
}

inline std::chrono::nanoseconds ageOf(const QString &path)
{
    return std::filesystem::file_time_type::clock::now() -
           std::filesystem::last_write_time(nativePath(path));
}

/// The 22nd field of what the system tells of a process, whose name holds no blank.
inline unsigned long long startOf(pid_t process)
{
    QFile file(QStringLiteral("/proc/%1/stat").arg(process));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return file.readAll().split(' ').value(21).toULongLong();
}

} // namespace corvane
