// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <gtest/gtest.h>

#include <unistd.h>

/// For its life the process is a user without rights, if it was root, who may read everything.
class OtherUser
{
public:
    OtherUser() : m_wasRoot(geteuid() == 0)
    {
        if (m_wasRoot) {
            EXPECT_EQ(setresuid(65534, 65534, 0), 0);
        }
    }
    ~OtherUser()
    {
        if (m_wasRoot) {
            EXPECT_EQ(setresuid(0, 0, 0), 0);
        }
    }
    OtherUser(const OtherUser &) = delete;
    OtherUser &operator=(const OtherUser &) = delete;

private:
    bool m_wasRoot;
};
