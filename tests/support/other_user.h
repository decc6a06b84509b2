// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// For its life the process is a user without rights, if it was root, who may read everything. What
/// that is on a system stands in other_user_posix.cpp and other_user_windows.cpp.
class OtherUser
{
public:
    OtherUser();
    ~OtherUser();
    OtherUser(const OtherUser &) = delete;
    OtherUser &operator=(const OtherUser &) = delete;

private:
    bool m_wasRoot = false;
};
