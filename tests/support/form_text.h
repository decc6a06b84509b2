// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

class QWidget;

/// @file
/// A form as a text that can be read beside its description: a test compares the whole of it.

/// A line for each widget, layout and spacer of the window in their order, what lies within one
/// behind it and two spaces further in: class, object name, and what differs from a fresh one of
/// its class. Texts are in quotes, the lines of one are joined by "\n".
///
///     QDialog Ask "Question" 400x300
///       QGridLayout grid spacing 6 margins 11 11 11 11
///         QLabel note "Which?" wordWrap cell 0,0 2 columns
///         QCheckBox all "All" checked cell 1,0
///         spacer 40x20 Expanding/Minimum cell 1,1
///
/// Without what the style and the desktop give: fonts (but for bold), palettes, icons and places.
std::string formText(const QWidget &form);
