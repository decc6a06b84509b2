// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/page_guard.h"

namespace corvane
{

// This system refuses to shorten a file that is mapped: there is nothing to watch for.
PageGuard::PageGuard(const void *, std::size_t) : m_place(0) {}

PageGuard::~PageGuard() = default;

bool PageGuard::wasMissed() const
{
    return m_place != 0;
}

} // namespace corvane
