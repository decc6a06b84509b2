// SPDX-License-Identifier: GPL-3.0-or-later
//
// A library, but no plugin.

int answer()
{
    return 42;
}
