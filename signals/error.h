// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <stdexcept>

#if defined(signals)
#error "Qt's macro hides this namespace: define QT_NO_KEYWORDS, as linking the target signals does"
#endif

namespace signals
{

/// What this library throws. The text names the place, what was found there and what was expected,
/// each with its number; it does not name the file, which only the caller knows. Volumes and rows
/// are counted from 0.
class Error : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// What was asked for cannot be done, whatever the data are: an unknown strategy, a negative
/// threshold, a pass band without width.
class UsageError : public Error
{
public:
    using Error::Error;
};

} // namespace signals
