// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QTextDocument>

/// @file
/// Names and paths are the user's own: "<b>go</b>" is one like any other, and is shown as it is
/// written also where the toolkit takes what looks like rich text for such.

/// For a tool tip. A text that looks like nothing else stays as it is.
inline QString asToolTip(const QString &text)
{
    return Qt::mightBeRichText(text) ? Qt::convertFromPlainText(text, Qt::WhiteSpaceNormal) : text;
}

/// For a place that always takes rich text, as the axes of a chart do.
inline QString asRichText(const QString &text)
{
    return text.toHtmlEscaped();
}
