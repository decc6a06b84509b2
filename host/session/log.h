// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// @file
/// Where texts for the user go: to the current session, as its members of these names do; without
/// one to standard error. On the main thread.

namespace corvane
{

void logText(const QString &text);
void showMessage(const QString &text);

} // namespace corvane
