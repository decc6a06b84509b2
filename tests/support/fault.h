// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tests/support/fake_host.h"

#include <algorithm>
#include <map>
#include <ostream>
#include <string>
#include <vector>

/// @file
/// Tables of what comes of it when a function of the host fails.

namespace fake_host
{

/// What is seen of a piece of work, by name.
using Story = std::map<std::string, std::string>;

using Failures = std::vector<Failure>;
inline const Failures zero = {Failure::Zero};
inline const Failures zeroed = {Failure::ZeroedRecord};
inline const Failures both = {Failure::Zero, Failure::ZeroedRecord};

/// A function that fails at one of its calls, and what comes of it.
struct Fault {
    const char *function;
    int nthCall;
    Failures failures; ///< each with the same outcome
    Story story;
};

inline std::ostream &operator<<(std::ostream &out, const Fault &fault)
{
    return out << fault.function << ", call " << fault.nthCall;
}

/// For the name of a test with this parameter.
inline std::string testName(const Fault &fault)
{
    return std::string(fault.function + 2) + "_" + std::to_string(fault.nthCall) +
           (fault.failures == both     ? ""
            : fault.failures == zeroed ? "_zeroed"
                                       : "_none");
}

/// Calls that the host has had and that no fault makes to fail in both ways.
template <typename Faults>
std::vector<std::string> untested(const Faults &faults, const FakeHost &host)
{
    std::vector<std::string> calls;
    for (const std::string &function : FakeHost::functionNames()) {
        for (int call = 1; call <= host.count(function); ++call) {
            Failures tested;
            for (const Fault &fault : faults) {
                if (fault.function == function && fault.nthCall == call)
                    tested.insert(tested.end(), fault.failures.begin(), fault.failures.end());
            }
            std::sort(tested.begin(), tested.end());
            if (tested != both)
                calls.push_back(function + ", call " + std::to_string(call));
        }
    }
    return calls;
}

} // namespace fake_host
