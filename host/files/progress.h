// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QElapsedTimer>
#include <QString>
#include <exception>
#include <functional>

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

/// Shows progress in one line on standard error, when that is a terminal; elsewhere nothing. The
/// line disappears with the object.
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
    QString m_what;
    bool m_onTerminal;
    bool m_shown = false;
    QElapsedTimer m_sinceShown;
};

} // namespace corvane
