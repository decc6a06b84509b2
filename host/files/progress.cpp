// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/progress.h"

#include "host/files/terminal.h"

#include <cstdio>

namespace corvane
{

namespace
{

constexpr qint64 millisecondsBetween = 100;

} // namespace

void tellProgress(const ProgressWatch &watch, qint64 done, qint64 total)
{
    if (watch && !watch(done, total))
        throw WorkStopped();
}

TerminalProgress::TerminalProgress(const QString &what)
    : m_what(what), m_onTerminal(standardErrorIsTerminal())
{
}

TerminalProgress::~TerminalProgress()
{
    if (m_shown)
        std::fputs("\r\x1b[K", stderr);
}

void TerminalProgress::show(qint64 done, qint64 total)
{
    if (!m_onTerminal || (m_shown && m_sinceShown.elapsed() < millisecondsBetween))
        return;
    const qint64 percent = total > 0 ? 100 * done / total : 100;
    std::fprintf(stderr, "\r\x1b[K%s %d %%", m_what.toUtf8().constData(),
                 static_cast<int>(percent));
    std::fflush(stderr);
    m_shown = true;
    m_sinceShown.start();
}

ProgressWatch TerminalProgress::watch()
{
    return [this](qint64 done, qint64 total) {
        show(done, total);
        return true;
    };
}

} // namespace corvane
