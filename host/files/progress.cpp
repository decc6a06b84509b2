// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/progress.h"

#include "host/files/end_signals.h"
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

ProgressWatch beginStep(const StepWatch &steps, const QString &step)
{
    return steps ? steps(step) : ProgressWatch();
}

ProgressWatch watchOfPart(const ProgressWatch &whole, qint64 done, qint64 parts)
{
    if (!whole)
        return {};
    constexpr qint64 grain = 1000;
    return [whole, done, parts](qint64 ofPart, qint64 total) {
        const qint64 share = total > 0 ? grain * ofPart / total : grain;
        return whole(done * grain + share, parts * grain);
    };
}

TerminalProgress::TerminalProgress(const QString &what)
    : m_what(what), m_onTerminal(standardErrorIsTerminal())
{
    put(what);
}

TerminalProgress::~TerminalProgress()
{
    put({});
}

void TerminalProgress::put(const QString &text)
{
    // Whoever ends the process has the last word.
    if (!m_onTerminal || endSignalHasCome())
        return;
    std::fprintf(stderr, "%s%s", terminalLineStart, text.toUtf8().constData());
    std::fflush(stderr);
}

void TerminalProgress::show(qint64 done, qint64 total)
{
    if (!m_onTerminal || (m_isShared && m_sinceShown.elapsed() < millisecondsBetween))
        return;
    const qint64 percent = total > 0 ? 100 * done / total : 100;
    put(QStringLiteral("%1 %2 %").arg(m_what, QString::number(percent)));
    m_isShared = true;
    m_sinceShown.start();
}

ProgressWatch TerminalProgress::watch()
{
    return [this](qint64 done, qint64 total) {
        show(done, total);
        return true;
    };
}

ProgressWatch TerminalSteps::begin(const QString &step)
{
    m_step.emplace(step);
    return m_step->watch();
}

StepWatch TerminalSteps::watch()
{
    return [this](const QString &step) { return begin(step); };
}

} // namespace corvane
