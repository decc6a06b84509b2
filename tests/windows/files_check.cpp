// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the host's files ask of Windows: who a process is and whether it runs, room on a disk, the
// watch over mapped memory, and the end by the console.
#include "host/files/disk.h"
#include "host/files/end_signals.h"
#include "host/files/page_guard.h"
#include "host/files/process_identity.h"

#include <chrono>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <io.h>
#include <string>
#include <sys/stat.h>
#include <windows.h>

namespace
{

int failures = 0;
int passes = 0;

void check(bool passed, const char *what)
{
    if (passed) {
        ++passes;
        return;
    }
    ++failures;
    std::printf("failed: %s\n", what);
}

/// This program once more, with an argument.
PROCESS_INFORMATION started(const char *argument)
{
    char path[MAX_PATH];
    GetModuleFileNameA(nullptr, path, sizeof path);
    std::string command = '"' + std::string(path) + "\" " + argument;
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process{};
    check(CreateProcessA(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                         &startup, &process) != 0,
          "start of a process");
    return process;
}

DWORD endOf(const PROCESS_INFORMATION &process)
{
    WaitForSingleObject(process.hProcess, INFINITE);
    DWORD status = 0;
    GetExitCodeProcess(process.hProcess, &status);
    return status;
}

void checkProcesses()
{
    using namespace corvane;
    const ProcessIdentity own = thisProcess();
    check(!own.host.empty() && own.number > 0 && own.start > 0, "identity");
    check(stateOf(own) == ProcessState::Runs, "a process that runs");
    ProcessIdentity other = own;
    --other.start;
    check(stateOf(other) == ProcessState::IsGone, "a process that had the same number");
    other = own;
    other.host = "elsewhere";
    check(stateOf(other) == ProcessState::IsElsewhere, "a process of another machine");

    const PROCESS_INFORMATION child = started("nothing");
    endOf(child);
    other = own;
    other.number = child.dwProcessId;
    check(stateOf(other) == ProcessState::IsGone, "a process that has ended");
}

/// An hour; the standard library here does not do that to folders.
void makeOld(const char *path)
{
    FILETIME time;
    GetSystemTimeAsFileTime(&time);
    ULARGE_INTEGER ticks{{time.dwLowDateTime, time.dwHighDateTime}};
    ticks.QuadPart -= 3600 * 10000000ULL;
    time = {ticks.LowPart, ticks.HighPart};
    const HANDLE file = CreateFileA(path, FILE_WRITE_ATTRIBUTES, 0, nullptr, OPEN_EXISTING,
                                    FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    check(SetFileTime(file, nullptr, nullptr, &time) != 0, "an hour back");
    CloseHandle(file);
}

void checkDisk()
{
    const char *const name = "files_check.bin";
    const int file = _open(name, _O_RDWR | _O_CREAT | _O_TRUNC | _O_BINARY, _S_IREAD | _S_IWRITE);
    check(corvane::reserveRoom(file, 100000) == 0 && _filelengthi64(file) == 100000, "room");
    check(corvane::syncToDisk(file) == 0, "bytes on the disk");
    _close(file);
    using std::filesystem::last_write_time;
    const auto before = std::filesystem::file_time_type::clock::now() - std::chrono::minutes(30);
    makeOld(name);
    check(corvane::faultOfReplacing(name) == 0, "a file that can be replaced");
    check(corvane::faultOfReplacing("no such file") == 0, "nothing to replace");
    const HANDLE held =
        CreateFileA(name, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    check(corvane::faultOfReplacing(name) != 0, "a file that another program holds");
    CloseHandle(held);
    check(corvane::touch(name) == 0 && last_write_time(name) > before, "touch");
    check(corvane::touch("no such file") != 0, "touch of nothing");
    std::filesystem::create_directory("touched");
    makeOld("touched");
    check(corvane::touch("touched") == 0 && last_write_time("touched") > before,
          "touch of a folder");
    std::filesystem::remove("touched");
    std::filesystem::remove(name);
}

void checkMappedMemory()
{
    char bytes[4096] = {};
    const corvane::PageGuard guard(bytes, sizeof bytes);
    check(!guard.wasMissed(), "nothing is missed");
}

void checkEnd()
{
    constexpr DWORD endedByControlC = 0xC000013A;
    check(endOf(started("end")) == endedByControlC, "end by the console");
    corvane::catchEndSignals();
    check(corvane::waitForEndSignal(std::chrono::milliseconds(1)) == 0, "no signal");
    check(!corvane::endSignalHasCome(), "no signal yet");
}

} // namespace

int main(int argc, char **argv)
{
    if (argc > 1 && std::strcmp(argv[1], "end") == 0)
        corvane::endBySignal(1);
    if (argc > 1)
        return 0;
    checkProcesses();
    checkDisk();
    checkMappedMemory();
    checkEnd();
    std::printf("%d passed, %d failed\n", passes, failures);
    return failures == 0 && passes > 0 ? 0 : 1;
}
