// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDir>
#include <QProcess>
#include <gtest/gtest.h>

#include <csignal>
#include <functional>
#include <string>
#include <vector>

/// @file
/// Runs a program and sends it a signal as soon as something is the case.

namespace corvane
{

struct InterruptedRun {
    int signal = 0;  ///< that ended it
    int status = -1; ///< of its exit, -1 when a signal ended it
    std::string output;
    std::string errors;
};

/// A signal that is sent as soon as something is the case.
struct Interruption {
    int signal;
    std::function<bool()> condition;
};

/// Runs a program with interruptions that come one after the other; fails when it ends before the
/// last.
inline InterruptedRun runInterrupted(const QString &program, const QStringList &arguments,
                                     const std::vector<Interruption> &interruptions)
{
    QProcess process;
    process.start(program, arguments);
    EXPECT_TRUE(process.waitForStarted());
    for (const Interruption &interruption : interruptions) {
        while (!interruption.condition() && !process.waitForFinished(1)) {
        }
        EXPECT_EQ(process.state(), QProcess::Running)
            << process.readAllStandardError().toStdString();
        if (process.state() == QProcess::Running)
            kill(static_cast<pid_t>(process.processId()), interruption.signal);
    }
    EXPECT_TRUE(process.waitForFinished(120000));
    const bool wasKilled = process.exitStatus() == QProcess::CrashExit;
    return {wasKilled ? process.exitCode() : 0, wasKilled ? -1 : process.exitCode(),
            process.readAllStandardOutput().toStdString(),
            process.readAllStandardError().toStdString()};
}

/// Hidden folders that stand in a folder.
inline QStringList hiddenIn(const QString &folder)
{
    return QDir(folder).entryList({QStringLiteral(".corvane-*")},
                                  QDir::Dirs | QDir::Files | QDir::Hidden);
}

/// Whether one of them holds a file of that name.
inline bool isInWork(const QString &folder, const QString &name)
{
    const QStringList all = hiddenIn(folder);
    return std::any_of(all.begin(), all.end(), [&](const QString &hidden) {
        return QFileInfo::exists(folder + QLatin1Char('/') + hidden + QLatin1Char('/') + name);
    });
}

} // namespace corvane
