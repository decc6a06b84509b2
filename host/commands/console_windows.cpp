// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/commands/console.h"

#include <windows.h>

#include <shellapi.h>

namespace corvane
{

namespace
{

/// The line of progress goes back to its start by control sequences.
void understandControlSequences(DWORD stream)
{
    const HANDLE handle = GetStdHandle(stream);
    DWORD mode = 0;
    if (GetConsoleMode(handle, &mode) != 0)
        SetConsoleMode(handle, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
}

} // namespace

Console::Console() : m_outputBefore(GetConsoleOutputCP())
{
    SetConsoleOutputCP(CP_UTF8);
    understandControlSequences(STD_OUTPUT_HANDLE);
    understandControlSequences(STD_ERROR_HANDLE);
}

Console::~Console()
{
    // The console belongs to the program that this one was started from.
    SetConsoleOutputCP(m_outputBefore);
}

QStringList Console::arguments(int, char **) const
{
    // Those of main() have lost what the user's code page lacks.
    int count = 0;
    wchar_t **const wide = CommandLineToArgvW(GetCommandLineW(), &count);
    QStringList texts;
    for (int n = 1; n < count; ++n)
        texts += QString::fromWCharArray(wide[n]);
    LocalFree(wide);
    return texts;
}

void leaveOwnConsole()
{
    DWORD processes[2];
    if (GetConsoleProcessList(processes, 2) == 1)
        FreeConsole();
}

} // namespace corvane
