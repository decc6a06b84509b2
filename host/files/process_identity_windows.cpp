// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/process_identity.h"

#include <array>
#include <cctype>
#include <windows.h>

namespace corvane
{

namespace
{

std::string hostText()
{
    std::array<char, 64> name{};
    auto length = static_cast<DWORD>(name.size());
    GetComputerNameExA(ComputerNameDnsHostname, name.data(), &length);
    std::string host = name.data();
    for (char &c : host)
        if (std::isalnum(static_cast<unsigned char>(c)) == 0 && c != '.')
            c = '_';
    return host;
}

/// In units of 100 ns since 1601; 0 when the system does not tell it.
unsigned long long startOf(HANDLE process)
{
    FILETIME start{};
    FILETIME ignored{};
    if (GetProcessTimes(process, &start, &ignored, &ignored, &ignored) == 0)
        return 0;
    return (static_cast<unsigned long long>(start.dwHighDateTime) << 32) | start.dwLowDateTime;
}

} // namespace

ProcessIdentity thisProcess()
{
    static const std::string host = hostText();
    // The start is an absolute time: it needs no number of the machine's own start beside it.
    return {host, "0", static_cast<long long>(GetCurrentProcessId()), startOf(GetCurrentProcess())};
}

ProcessState stateOf(const ProcessIdentity &process)
{
    if (process.host != thisProcess().host)
        return ProcessState::IsElsewhere;
    const HANDLE handle =
        OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, static_cast<DWORD>(process.number));
    if (handle == nullptr)
        return GetLastError() == ERROR_INVALID_PARAMETER ? ProcessState::IsGone
                                                         : ProcessState::Runs;
    const unsigned long long start = startOf(handle);
    DWORD status = STILL_ACTIVE;
    GetExitCodeProcess(handle, &status);
    CloseHandle(handle);
    const bool isAnother = start != 0 && start != process.start;
    return isAnother || status != STILL_ACTIVE ? ProcessState::IsGone : ProcessState::Runs;
}

} // namespace corvane
