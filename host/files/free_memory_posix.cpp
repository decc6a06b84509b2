// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/free_memory.h"

#include <algorithm>
#include <fstream>
#include <optional>
#include <string>

namespace corvane
{

namespace
{

/// What the kernel thinks that programs can take without swapping.
std::optional<qint64> availableOfMachine()
{
    std::ifstream file("/proc/meminfo");
    std::string name;
    qint64 kilobytes = 0;
    for (std::string line; file >> name >> kilobytes; std::getline(file, line))
        if (name == "MemAvailable:")
            return kilobytes * 1024;
    return std::nullopt;
}

std::optional<qint64> numberIn(const std::string &path)
{
    qint64 number = 0;
    if (std::ifstream(path) >> number)
        return number;
    return std::nullopt;
}

/// What is left below the limit of a control group; pages of files in its memory can be given back.
std::optional<qint64> leftIn(const std::string &group)
{
    const std::optional<qint64> limit = numberIn(group + "/memory.max");
    const std::optional<qint64> used = numberIn(group + "/memory.current");
    if (!limit || !used)
        return std::nullopt;
    qint64 ofFiles = 0;
    std::ifstream file(group + "/memory.stat");
    std::string name;
    for (qint64 bytes = 0; file >> name >> bytes;)
        if (name == "inactive_file")
            ofFiles = bytes;
    return std::max<qint64>(0, *limit - *used + ofFiles);
}

/// Of this process' control group and all above it.
std::optional<qint64> leftInGroups()
{
    std::ifstream file("/proc/self/cgroup");
    std::optional<qint64> least;
    for (std::string line; std::getline(file, line);) {
        if (line.rfind("0::", 0) != 0)
            continue;
        std::string group = line.substr(3);
        for (;;) {
            const std::optional<qint64> left = leftIn("/sys/fs/cgroup" + group);
            if (left && (!least || *left < *least))
                least = left;
            if (group.find_last_of('/') == std::string::npos || group.size() <= 1)
                break;
            group.erase(group.find_last_of('/'));
        }
    }
    return least;
}

} // namespace

qint64 freeMemory()
{
    const std::optional<qint64> ofMachine = availableOfMachine();
    const std::optional<qint64> ofGroups = leftInGroups();
    if (ofMachine && ofGroups)
        return std::min(*ofMachine, *ofGroups);
    return ofMachine ? *ofMachine : ofGroups.value_or(0);
}

} // namespace corvane
