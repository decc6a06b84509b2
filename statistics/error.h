// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <stdexcept>

namespace statistics
{

/// What every function of this library throws when it cannot do what it is asked for: one line in
/// plain English that says what was found and what was expected, for the user to read. Subjects and
/// edges stand in it by their number from 0 where the function does not know their names.
class Error : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

} // namespace statistics
