// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <exception>
#include <functional>

#include <nodalis/export.h>

namespace nodalis
{
inline namespace NODALIS_ABI
{

/// How many threads a measure may take, and who is told how far it is. Results are the same for
/// any.
struct Effort {
    int threads = 1; ///< 0: one for each processor
    /// Is told the share that is done, ascending, up to 1; from any thread, one call at a time.
    /// False ends the work, which then throws Ended.
    std::function<bool(double share)> progress = {};
};

/// The work was ended by its progress.
class Ended : public std::exception
{
public:
    const char *what() const noexcept override { return "the work was ended"; }
};

} // namespace NODALIS_ABI
} // namespace nodalis
