// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/report/subject_page.h"

#include "host/report/ledger_table.h"
#include "host/report/run_table.h"

namespace corvane
{

namespace
{

void addUndone(HtmlPage &page, const std::vector<ReportedRun> &runs)
{
    QStringList lines;
    for (const ReportedRun &run : runs)
        if (run.status != QLatin1String("done"))
            lines +=
                QStringLiteral("%1, atlas %2, is %3: %4")
                    .arg(run.name, run.atlas, run.status,
                         run.reason.isEmpty() ? QStringLiteral("no reason is given") : run.reason);
    if (lines.isEmpty())
        return;
    page.section(QStringLiteral("Not done"), QStringLiteral("undone"));
    page.list(lines, "notes");
}

void addRuns(HtmlPage &page, const std::vector<ReportedRun> &runs)
{
    page.section(QStringLiteral("All runs"), QStringLiteral("runs"));
    page.paragraph(QStringLiteral("The name of a run leads to its own page with its pictures."));
    page.openTable(
        QStringList{QStringLiteral("Run"), QStringLiteral("Atlas"), QStringLiteral("Status")} +
            ledgerColumns(),
        3);
    for (const ReportedRun &run : runs) {
        std::vector<PageCell> cells = runCells(run);
        const std::vector<PageCell> ledger = ledgerCells(run.ledger);
        cells.insert(cells.end(), ledger.begin(), ledger.end());
        page.row(cells);
    }
    page.closeTable();
}

} // namespace

QByteArray subjectPage(const QString &participant, const std::vector<ReportedRun> &runs)
{
    HtmlPage page(participant);
    page.element("h1", participant);
    page.element("p", QStringLiteral("Runs by atlases: ") + statusText(runs), "lead");
    addUndone(page, runs);
    addRuns(page, runs);
    addLedgerMeanings(page);
    return page.finish();
}

} // namespace corvane
