// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class QString;
class QWidget;

/// @file
/// Boxes that keep where the user looks: over the active window, and above those that keep above
/// all others. `window` is what they stand over when none is active, as right after a dialog has
/// closed.

namespace corvane
{

/// Says something, and returns when it was read.
void showInBox(QWidget *window, const QString &text);

/// Asks; false unless the user says yes.
bool askInBox(QWidget *window, const QString &text);

} // namespace corvane
