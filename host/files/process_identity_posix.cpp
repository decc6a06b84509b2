// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/process_identity.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <unistd.h>

namespace corvane
{

namespace
{

std::string firstWordOf(const char *path)
{
    std::string word;
    std::ifstream(path) >> word;
    return word;
}

/// FNV-1a, as eight hexadecimal digits.
std::string shortSum(const std::string &text)
{
    std::uint32_t sum = 2166136261U;
    for (const char c : text)
        sum = (sum ^ static_cast<unsigned char>(c)) * 16777619U;
    std::array<char, 9> digits{};
    std::snprintf(digits.data(), digits.size(), "%08x", sum);
    return digits.data();
}

/// Containers have process numbers of their own.
std::string numberSpace()
{
    std::array<char, 64> text{};
    const ssize_t length = readlink("/proc/self/ns/pid", text.data(), text.size() - 1);
    return length > 0 ? text.data() : "";
}

std::string hostText()
{
    constexpr std::size_t longest = 64;
    std::array<char, longest + 1> name{};
    gethostname(name.data(), longest);
    std::string host = name.data();
    for (char &c : host)
        if (std::isalnum(static_cast<unsigned char>(c)) == 0 && c != '.')
            c = '_';
    return host + '.' + shortSum(firstWordOf("/etc/machine-id") + numberSpace());
}

std::string bootText()
{
    const std::string boot = firstWordOf("/proc/sys/kernel/random/boot_id").substr(0, 8);
    return boot.empty() ? "0" : boot;
}

/// What the system tells of a process; `start` is 0 where it does not.
struct ProcessRecord {
    char state = '?';
    unsigned long long start = 0;
};

ProcessRecord recordOf(long long number)
{
    std::ifstream file("/proc/" + std::to_string(number) + "/stat");
    std::string text;
    std::getline(file, text);
    // The second of its fields is a name, which may hold anything; no bracket stands behind it.
    std::istringstream fields(text.substr(std::min(text.size(), text.rfind(')') + 1)));
    ProcessRecord record;
    constexpr int fieldOfStart = 22;
    fields >> record.state;
    std::string skipped;
    for (int field = 4; field < fieldOfStart; ++field)
        fields >> skipped;
    if (!(fields >> record.start))
        record.start = 0;
    return record;
}

} // namespace

ProcessIdentity thisProcess()
{
    static const std::string host = hostText();
    static const std::string boot = bootText();
    const long long number = getpid();
    return {host, boot, number, recordOf(number).start};
}

ProcessState stateOf(const ProcessIdentity &process)
{
    const ProcessIdentity own = thisProcess();
    if (process.host != own.host)
        return ProcessState::IsElsewhere;
    if (process.boot != own.boot)
        return ProcessState::IsGone;
    if (kill(static_cast<pid_t>(process.number), 0) != 0 && errno == ESRCH)
        return ProcessState::IsGone;
    const ProcessRecord record = recordOf(process.number);
    const bool hasEnded = record.state == 'Z' || record.state == 'X';
    const bool isAnother = record.start != 0 && record.start != process.start;
    return hasEnded || isAnother ? ProcessState::IsGone : ProcessState::Runs;
}

} // namespace corvane
