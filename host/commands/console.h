// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>

/// @file
/// What differs between operating systems in how the program is started and what it prints:
/// console_posix.cpp and console_windows.cpp.

namespace corvane
{

/// While it lives, paths, arguments and what is printed are UTF-8, whatever the user's locale says.
class Console
{
public:
    Console();
    ~Console();
    Console(const Console &) = delete;
    Console &operator=(const Console &) = delete;

    /// The arguments behind the program's name. Throws UsageError when one is not UTF-8: it would
    /// become the name of another file.
    QStringList arguments(int argc, char **argv) const;

private:
    unsigned m_outputBefore = 0; ///< code page that was in use
};

/// For a program with windows: one that was not started from a console needs none, also where the
/// system has given it one of its own.
void leaveOwnConsole();

} // namespace corvane
