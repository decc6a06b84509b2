// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QProcess>
#include <gtest/gtest.h>

#include <string>

/// @file
/// Runs a program on a terminal of its own, as a user sits at one.

namespace corvane
{

/// What each line of progress begins with.
constexpr const char *progressLine = "\r\x1b[K";

struct TerminalRun {
    int status = -1; ///< 128 and the signal that ended it
    QByteArray shown;
};

/// The words of a command line for a shell.
inline QString shellWords(const QStringList &words)
{
    QStringList quoted;
    for (QString word : words)
        quoted += QLatin1Char('\'') + word.replace(QLatin1Char('\''), QLatin1String("'\\''")) +
                  QLatin1Char('\'');
    return quoted.join(QLatin1Char(' '));
}

/// Runs it until it ends. Presses Ctrl-C as soon as that text is shown, unless it is empty.
inline TerminalRun runOnTerminal(const QStringList &words, const QByteArray &interruptAt = {})
{
    QProcess terminal;
    terminal.setProcessChannelMode(QProcess::MergedChannels);
    // script gives the program a terminal, passes on what it writes there, and what is typed.
    terminal.start(QStringLiteral("script"),
                   {QStringLiteral("-qec"), shellWords(words), QStringLiteral("/dev/null")});
    EXPECT_TRUE(terminal.waitForStarted());
    TerminalRun run;
    bool isPressed = interruptAt.isEmpty();
    while (terminal.state() == QProcess::Running && !isPressed) {
        terminal.waitForReadyRead(1000);
        run.shown += terminal.readAll();
        if (!run.shown.contains(interruptAt))
            continue;
        terminal.write("\x03");
        isPressed = true;
    }
    EXPECT_TRUE(isPressed) << run.shown.toStdString();
    EXPECT_TRUE(terminal.waitForFinished(120000));
    run.shown += terminal.readAll();
    run.status = terminal.exitCode();
    return run;
}

/// The first words of what was shown in the line of progress, one after the other.
inline QByteArrayList progressSteps(const QByteArray &shown)
{
    QByteArrayList steps;
    int at = shown.indexOf(progressLine);
    while (at >= 0) {
        const int begin = at + int(qstrlen(progressLine));
        at = shown.indexOf(progressLine, begin);
        const QByteArray line = shown.mid(begin, at < 0 ? -1 : at - begin);
        const bool isShare = line.endsWith(" %");
        const QByteArray step = isShare ? line.left(line.lastIndexOf(' ', -3)) : line;
        if (at >= 0 && !step.isEmpty() && (steps.isEmpty() || steps.last() != step))
            steps += step;
    }
    return steps;
}

} // namespace corvane
