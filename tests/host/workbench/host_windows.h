// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>
#include <functional>
#include <ostream>
#include <vector>

/// @file
/// Every window of the host, for tests that hold for each of them.

namespace corvane
{

using LookAtWindow = std::function<void(QWidget &window)>;

struct HostWindow {
    const char *name;
    /// Brings the window up as the program does, calls `look` while it is to be seen, and closes
    /// it.
    void (*show)(const LookAtWindow &look);
};

inline void PrintTo(const HostWindow &window, std::ostream *stream)
{
    *stream << window.name;
}

const std::vector<HostWindow> &hostWindows();

} // namespace corvane
