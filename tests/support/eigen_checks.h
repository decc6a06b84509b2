// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <stdexcept>
#include <string>

/// @file
/// Keeps the checks of Eigen in the code of tests, in release builds too: without them, matrices of
/// different sizes count as equal when their common part is. A check that fails ends the test with
/// an exception that names it.
///
/// `tessera_test` includes this file first in every source of every test.

#ifdef eigen_assert
#error "tests/support/eigen_checks.h has to come before Eigen"
#endif

namespace tests
{

[[noreturn]] inline void eigenCheckFailed(const char *check)
{
    throw std::logic_error(std::string("Eigen's check failed: ") + check);
}

} // namespace tests

#define eigen_assert(check) ((check) ? static_cast<void>(0) : tests::eigenCheckFailed(#check))
