// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>

/// @file
/// What differs between operating systems when a mapped file is shortened: page_guard_posix.cpp and
/// page_guard_windows.cpp.

namespace corvane
{

/// Watches over the memory of a mapped file. Other programs may shorten the file; its memory behind
/// the new end is then gone, and a process that reads there is ended by the system. While a guard
/// lives such a reading gives zeros instead, and the guard remembers it. Any thread may read.
class PageGuard
{
public:
    /// `begin` is where a mapping begins. Throws std::runtime_error beyond 1024 guards at a time.
    PageGuard(const void *begin, std::size_t length);
    ~PageGuard();
    PageGuard(const PageGuard &) = delete;
    PageGuard &operator=(const PageGuard &) = delete;

    /// Whether memory was read that the file no longer has.
    bool wasMissed() const;

private:
    std::size_t m_place; ///< in the table of all guards
};

} // namespace corvane
