// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <functional>

/// @file
/// Where the host's texts go. On the command line that is standard error; windows and tests set
/// sinks of their own. All of it belongs to the main thread.

namespace corvane
{

using TextSink = std::function<void(const QString &text)>;

/// Appends a text to the host's log. A text may begin with or hold line feeds; it needs none at its
/// end.
void logText(const QString &text);

/// Sets where logged texts go and returns what was set before. An empty sink means standard error,
/// one line feed behind each text.
TextSink setLogSink(TextSink sink);

/// Shows a message that the user must see: a message box in windows. Without a sink of its own it
/// goes to the log.
void showMessage(const QString &text);
TextSink setMessageSink(TextSink sink);

/// Brings the log to the front. Does nothing unless windows set an action.
void showLogPane();
std::function<void()> setLogPaneAction(std::function<void()> action);

} // namespace corvane
