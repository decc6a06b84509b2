// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <functional>
#include <mutex>

#include <nodalis/effort.h>

namespace nodalis::detail
{

/// Calls work(index) once for each index below \p count, in ascending order, on up to \p threads
/// threads (0: one for each processor), the caller's among them. The first exception ends the rest
/// and is thrown here.
void for_each_index(std::size_t count, int threads,
                    const std::function<void(std::size_t index)> &work);

/// Tells how far work of several threads is.
class Report
{
public:
    /// \p all is the sum of what will be added.
    Report(const Effort &effort, double all) : m_effort(effort), m_all(all) {}

    /// Throws Ended when the work is not to go on.
    void add(double part);

private:
    const Effort &m_effort;
    const double m_all;
    std::mutex m_mutex;
    double m_done = 0.0; ///< guarded by m_mutex
};

} // namespace nodalis::detail
