// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

#include "statistics/error.h"

/// What the library says as it refuses; "no error" if it does not.
template <typename Function>
std::string error_text(Function &&function)
{
    try {
        function();
    } catch (const statistics::Error &error) {
        return error.what();
    }
    return "no error";
}
