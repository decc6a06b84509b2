// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/other_user.h"

#include <gtest/gtest.h>
#include <unistd.h>

OtherUser::OtherUser() : m_wasRoot(geteuid() == 0)
{
    if (m_wasRoot) {
        EXPECT_EQ(setresuid(65534, 65534, 0), 0);
    }
}

OtherUser::~OtherUser()
{
    if (m_wasRoot) {
        EXPECT_EQ(setresuid(0, 0, 0), 0);
    }
}
