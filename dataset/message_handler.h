// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QtGlobal>

/// Full path of the log file, empty until verbose logging starts. Never destroyed: the handler
/// stays installed while the process ends.
extern QString &logFilePath;

/// Message handler that appends each message to the log file as one line: debug and info messages
/// with their text, any other type as an empty line. The file is opened and closed for each line,
/// so that the log survives a crash. Process-wide once installed, for the host's messages too.
void writeMessageToLogFile(QtMsgType type, const QMessageLogContext &context, const QString &text);
