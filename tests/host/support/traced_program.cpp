// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/host/support/traced_program.h"

#include "tests/host/support/host_files.h"

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <optional>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace corvane
{

namespace
{

/// The calls that are watched, and which of their arguments is the path.
struct WatchedCall {
    long number;
    SystemCall::Kind kind;
    int path;
};

constexpr WatchedCall watchedCalls[] = {
    {SYS_openat, SystemCall::Open, 1},        {SYS_renameat, SystemCall::Rename, 1},
    {SYS_renameat2, SystemCall::Rename, 1},   {SYS_unlinkat, SystemCall::Remove, 1},
    {SYS_mkdirat, SystemCall::MakeFolder, 1},
#ifdef SYS_rename // newer processors have only those above
    {SYS_open, SystemCall::Open, 0},          {SYS_rename, SystemCall::Rename, 0},
    {SYS_unlink, SystemCall::Remove, 0},      {SYS_rmdir, SystemCall::Remove, 0},
    {SYS_mkdir, SystemCall::MakeFolder, 0},
#endif
};

std::string textOf(pid_t process, unsigned long address)
{
    std::string text;
    const std::string memory = "/proc/" + std::to_string(process) + "/mem";
    const int file = open(memory.c_str(), O_RDONLY | O_CLOEXEC);
    char byte = 0;
    while (pread(file, &byte, 1, static_cast<off_t>(address + text.size())) == 1 && byte != 0)
        text += byte;
    close(file);
    return text;
}

/// The call at whose beginning a process stands, if it is one of those.
std::optional<SystemCall> callOf(pid_t process)
{
    __ptrace_syscall_info info{};
    ptrace(PTRACE_GET_SYSCALL_INFO, process, sizeof info, &info);
    if (info.op != PTRACE_SYSCALL_INFO_ENTRY)
        return std::nullopt;
    for (const WatchedCall &watched : watchedCalls)
        if (info.entry.nr == static_cast<unsigned long>(watched.number))
            return SystemCall{watched.kind, textOf(process, info.entry.args[watched.path])};
    return std::nullopt;
}

/// Becomes the program. Between fork and here nothing may ask for memory.
[[noreturn]] void become(char *const *arguments, const char *output, const char *errors)
{
    constexpr int mode = O_WRONLY | O_CREAT | O_TRUNC;
    dup2(open(output, mode, 0600), STDOUT_FILENO);
    dup2(open(errors, mode, 0600), STDERR_FILENO);
    ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
    execv(arguments[0], arguments);
    _exit(127);
}

} // namespace

TracedRun runTraced(const QString &program, const QStringList &arguments,
                    const std::function<Fate(const SystemCall &call)> &watcher)
{
    const TemporaryFolder folder;
    const QByteArray output = folder.path("output").toUtf8();
    const QByteArray errors = folder.path("errors").toUtf8();
    QList<QByteArray> words{program.toUtf8()};
    for (const QString &argument : arguments)
        words += argument.toUtf8();
    std::vector<char *> pointers;
    for (QByteArray &word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);
    // The search for leaks traces the process itself, which only one can do.
    const QByteArray options = qgetenv("ASAN_OPTIONS");
    qputenv("ASAN_OPTIONS", "detect_leaks=0");
    const pid_t process = fork();
    if (process == 0)
        become(pointers.data(), output.constData(), errors.constData());
    qputenv("ASAN_OPTIONS", options);
    int state = 0;
    EXPECT_EQ(waitpid(process, &state, 0), process);
    EXPECT_TRUE(WIFSTOPPED(state)) << "the program cannot be traced";
    ptrace(PTRACE_SETOPTIONS, process, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL);
    int passedOn = 0;
    while (WIFSTOPPED(state)) {
        if (ptrace(PTRACE_SYSCALL, process, nullptr, passedOn) != 0 ||
            waitpid(process, &state, 0) != process)
            break;
        if (!WIFSTOPPED(state))
            break;
        const bool isCall = WSTOPSIG(state) == (SIGTRAP | 0x80);
        passedOn = isCall ? 0 : WSTOPSIG(state);
        const std::optional<SystemCall> call = isCall ? callOf(process) : std::nullopt;
        if (call && watcher(*call) == Fate::IsKilled) {
            kill(process, SIGKILL);
            waitpid(process, &state, 0);
        }
    }
    TracedRun run;
    run.status = WIFEXITED(state) ? WEXITSTATUS(state) : -1;
    run.signal = WIFSIGNALED(state) ? WTERMSIG(state) : 0;
    run.output = bytesOf(folder.path("output")).toStdString();
    run.errors = bytesOf(folder.path("errors")).toStdString();
    return run;
}

} // namespace corvane
