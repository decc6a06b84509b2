// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QElapsedTimer>
#include <QString>
#include <exception>
#include <functional>
#include <optional>

/// @file
/// How long work tells how far it has come: a line on a terminal, a dialog or a test gives it a
/// watch, and the work knows none of them.

namespace corvane
{

/// Called with what is done and all that there is to do; false stops the work.
using ProgressWatch = std::function<bool(qint64 done, qint64 total)>;

/// Work was stopped by its watch.
class WorkStopped : public std::exception
{
public:
    const char *what() const noexcept override { return "the work was stopped"; }
};

/// Tells a watch, if there is one. Throws WorkStopped when it says so.
void tellProgress(const ProgressWatch &watch, qint64 done, qint64 total);

/// Gives the watch of a step that begins: "reading the run".
using StepWatch = std::function<ProgressWatch(const QString &step)>;

/// The watch of a step that begins, if anybody watches the steps.
ProgressWatch beginStep(const StepWatch &steps, const QString &step);

/// A watch of a part of a step: `done` of its parts, all alike, are behind it, and `parts` make the
/// whole. Empty where the whole has none.
ProgressWatch watchOfPart(const ProgressWatch &whole, qint64 done, qint64 parts);

/// Shows progress in one line on standard error, when that is a terminal; elsewhere nothing. What
/// goes on stands there at once, its share as soon as it is told. The line disappears with the
/// object.
class TerminalProgress
{
public:
    explicit TerminalProgress(const QString &what);
    ~TerminalProgress();
    TerminalProgress(const TerminalProgress &) = delete;
    TerminalProgress &operator=(const TerminalProgress &) = delete;

    /// Cheap enough to be called for every volume.
    void show(qint64 done, qint64 total);

    /// A watch that shows and never stops the work; not for longer than this object.
    ProgressWatch watch();

private:
    void put(const QString &text);

    QString m_what;
    bool m_onTerminal;
    bool m_isShared = false; ///< a share has been shown
    QElapsedTimer m_sinceShown;
};

/// The steps of a command, each shown like this when it begins, instead of the one before.
class TerminalSteps
{
public:
    ProgressWatch begin(const QString &step);
    void end() { m_step.reset(); }

    /// Not for longer than this object.
    StepWatch watch();

private:
    std::optional<TerminalProgress> m_step;
};

} // namespace corvane
