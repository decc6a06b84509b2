// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// CORVANE_EXPORT marks what a plugin may find in the host's executable; which of it that exports
/// is the affair of cmake/CorvaneExports.cmake, on Windows alone.
#ifdef _WIN32
#define CORVANE_EXPORT
#else
#define CORVANE_EXPORT __attribute__((visibility("default")))
#endif
