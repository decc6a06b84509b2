// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/other_user.h"

#include <gtest/gtest.h>

OtherUser::OtherUser()
{
    // Tests that need it are left out, see tests/windows/programs.txt.
    ADD_FAILURE() << "a process cannot become another user on this system";
}

OtherUser::~OtherUser() = default;
