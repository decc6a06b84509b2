// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <type_traits>
#include <typeinfo>

#include "signals/error.h"

/// The text of what \p action throws. The exception must be of the very type; another kind of error
/// gives "another type: .." and none "nothing thrown", which no expected text holds.
template <typename Exception, typename Action>
std::string error_text(Action action)
{
    static_assert(std::is_base_of_v<signals::Error, Exception>);
    try {
        action();
    } catch (const signals::Error &error) {
        return typeid(error) == typeid(Exception) ? error.what()
                                                  : std::string("another type: ") + error.what();
    }
    return "nothing thrown";
}
