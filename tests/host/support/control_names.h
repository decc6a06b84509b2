// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>
#include <string>

/// @file
/// What a screen reader has to say of the controls of a window.

namespace corvane
{

/// Whether people read or change something there, and it is not a part that Qt makes and names
/// inside its own widgets.
bool isControl(const QWidget *widget);

/// Class, name and parent, for messages.
std::string nameOf(const QWidget *widget);

/// Fails for each control without a name; gives the number of the controls.
int expectNames(const QWidget &window);

} // namespace corvane
