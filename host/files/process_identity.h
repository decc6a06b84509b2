// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

/// @file
/// Who a process is, and whether it still runs: so that what a process left behind is told from
/// what one is working on. process_identity_posix.cpp and process_identity_windows.cpp.

namespace corvane
{

/// A process, told apart from all others also on folders that machines share, and when its number
/// comes again.
struct ProcessIdentity {
    std::string host; ///< name of the machine, and a sum of what tells its process numbers apart
    std::string boot; ///< this start of the machine; "0" where the system does not tell it
    long long number = 0;
    unsigned long long start = 0; ///< when it was started, in the system's own unit
};

ProcessIdentity thisProcess();

enum class ProcessState {
    Runs,
    IsGone,
    IsElsewhere ///< on another machine, or behind the wall of a container: nobody here can tell
};

ProcessState stateOf(const ProcessIdentity &process);

} // namespace corvane
