// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/report/run_table.h"

#include <algorithm>

namespace corvane
{

namespace
{

constexpr const char *states[] = {"done", "excluded", "missing", "failed", "open"};

/// The class of the page's style for a status.
const char *styleOf(const QString &status)
{
    for (const char *state : states)
        if (status == QLatin1String(state))
            return state;
    return nullptr;
}

} // namespace

QString statusText(const std::vector<ReportedRun> &runs)
{
    QStringList counts;
    std::size_t told = 0;
    for (const char *state : states) {
        const auto count = std::count_if(runs.begin(), runs.end(), [state](const ReportedRun &run) {
            return run.status == QLatin1String(state);
        });
        told += std::size_t(count);
        if (count > 0)
            counts += QStringLiteral("%1 %2").arg(count).arg(QLatin1String(state));
    }
    if (told < runs.size())
        counts += QStringLiteral("%1 of another status").arg(runs.size() - told);
    return counts.isEmpty() ? QStringLiteral("no runs") : counts.join(QStringLiteral(", "));
}

std::vector<PageCell> runCells(const ReportedRun &run)
{
    std::vector<PageCell> cells;
    cells.emplace_back(run.name, run.page);
    cells.back().style = "name";
    cells.emplace_back(run.atlas);
    cells.emplace_back(run.status, styleOf(run.status));
    return cells;
}

} // namespace corvane
