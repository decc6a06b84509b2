// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// @file
/// Names and paths are the user's own: "<b>go</b>" is one like any other, and is shown as it is
/// written also where the toolkit takes what looks like rich text for such.

/// For a tool tip. A text that looks like nothing else stays as it is.
QString asToolTip(const QString &text);

/// For a place that always takes rich text, as the axes of a chart do.
QString asRichText(const QString &text);
