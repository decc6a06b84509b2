// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/report/study_page.h"

#include "host/painting/histogram_painting.h"
#include "host/painting/page_picture.h"
#include "host/painting/volume_axis.h"
#include "host/report/ledger_table.h"
#include "host/report/run_table.h"

#include <algorithm>
#include <cmath>
#include <set>

namespace corvane
{

namespace
{

using Rows = std::vector<StudySummary::Row>;

constexpr std::size_t mostRows = 3000;

std::vector<ReportedRun> runsOf(const Rows &rows)
{
    std::vector<ReportedRun> runs;
    runs.reserve(rows.size());
    for (const StudySummary::Row &row : rows)
        runs.push_back(row.run);
    return runs;
}

std::size_t participantCount(const Rows &rows)
{
    std::set<QString> participants;
    for (const StudySummary::Row &row : rows)
        participants.insert(row.participant);
    return participants.size();
}

void addTableNote(HtmlPage &page, const StudySummary &study, const QString &what)
{
    page.open("p");
    page.text(what);
    if (!study.table.isEmpty()) {
        page.text(QStringLiteral(" All rows are in "));
        page.link(study.table, study.table);
        page.text(QStringLiteral("."));
    }
    page.close();
}

void addUndone(HtmlPage &page, const StudySummary &study)
{
    page.section(QStringLiteral("Not done, and why"), QStringLiteral("undone"));
    Rows undone;
    std::copy_if(
        study.rows.begin(), study.rows.end(), std::back_inserter(undone),
        [](const StudySummary::Row &row) { return row.run.status != QLatin1String("done"); });
    if (undone.empty()) {
        page.paragraph(QStringLiteral("Every run is done."));
        return;
    }
    page.paragraph(QStringLiteral(
        "Excluded: a rule of the ledger says that too little is left. Missing: a file that the run "
        "needs is not there. Failed: a file cannot be read, or the work broke off. Open: not "
        "computed yet."));
    if (undone.size() > mostRows) {
        addTableNote(
            page, study,
            QStringLiteral("These are the first %1 of %2.").arg(mostRows).arg(undone.size()));
        undone.resize(mostRows);
    }
    page.openTable({QStringLiteral("Participant"), QStringLiteral("Run"), QStringLiteral("Atlas"),
                    QStringLiteral("Status"), QStringLiteral("Reason")});
    for (const StudySummary::Row &row : undone) {
        std::vector<PageCell> cells{{row.participant, row.page}};
        const std::vector<PageCell> run = runCells(row.run);
        cells.insert(cells.end(), run.begin(), run.end());
        cells.emplace_back(row.run.reason, "wide");
        page.row(cells);
    }
    page.closeTable();
}

/// A number of the ledger of all runs that have it.
std::vector<double> column(const Rows &rows, const char *key, bool done)
{
    std::vector<double> values;
    for (const StudySummary::Row &row : rows) {
        const QJsonValue value = row.run.ledger.value(QLatin1String(key));
        if (value.isDouble() && (row.run.status == QLatin1String("done")) == done)
            values.push_back(value.toDouble());
    }
    return values;
}

QString rangeText(std::vector<double> values)
{
    if (values.empty())
        return QStringLiteral("no run");
    std::sort(values.begin(), values.end());
    const std::size_t half = values.size() / 2;
    const double median =
        values.size() % 2 == 1 ? values[half] : (values[half - 1] + values[half]) / 2;
    return QStringLiteral("median %1, from %2 to %3")
        .arg(QString::number(median, 'g', 4), QString::number(values.front(), 'g', 4),
             QString::number(values.back(), 'g', 4));
}

void addDistribution(HtmlPage &page, const Rows &rows, const char *key, const QString &title,
                     const QString &advice)
{
    const std::vector<double> done = column(rows, key, true);
    const std::vector<double> others = column(rows, key, false);
    double highest = 0;
    for (const std::vector<double> *values : {&done, &others})
        for (const double value : *values)
            highest = std::max(highest, value);
    if (done.empty() && others.empty())
        return;
    const double step = roundStep(highest, 8);
    const HistogramPicture picture{title,
                                   {{QStringLiteral("done"), done, QColor(0, 90, 160)},
                                    {QStringLiteral("others"), others, QColor(215, 120, 0)}},
                                   0,
                                   std::max(step, std::ceil(highest / step) * step),
                                   {}};
    const PagePicture painted =
        paintedPicture(QSize(520, 200), 2, [&](QPainter &painter, const QRectF &area) {
            paintStrip(painter, area, picture);
        });
    const QString range = rangeText(done);
    page.picture(
        painted.png, painted.size,
        QStringLiteral("A dot for each run: %1; of those done %2.").arg(title, range),
        QStringLiteral("A dot for each run, blue for those done, orange for the others. Of "
                       "those done: %1. %2")
            .arg(range, advice));
}

void addDistributions(HtmlPage &page, const Rows &rows)
{
    page.section(QStringLiteral("Motion and what is left"), QStringLiteral("distributions"));
    page.open("div", "pair fit");
    addDistribution(page, rows, "MeanFDBefore", QStringLiteral("mean FD before cleaning [mm]"),
                    QStringLiteral("Good: most dots together at the left. Groups that differ here "
                                   "differ in motion, and may differ in connectivity for that "
                                   "reason alone."));
    addDistribution(page, rows, "Kept", QStringLiteral("kept volumes"),
                    QStringLiteral("Good: nearly as many as the files have, in every run."));
    addDistribution(page, rows, "DegreesOfFreedom", QStringLiteral("degrees of freedom left"),
                    QStringLiteral("Good: alike in all runs. A run with few has correlations that "
                                   "scatter more."));
    addDistribution(page, rows, "SecondsKept", QStringLiteral("time kept [s]"),
                    QStringLiteral("Good: several minutes in every run."));
    page.close();
}

void addSettings(HtmlPage &page, const StudySummary &study)
{
    page.section(QStringLiteral("What was asked for"), QStringLiteral("settings"));
    page.openTable({QStringLiteral("Setting"), QStringLiteral("Value")});
    for (const auto &[name, value] : study.settings)
        page.row({{name, "name"}, {value, "wide"}});
    page.closeTable();
}

void addRuns(HtmlPage &page, const StudySummary &study)
{
    page.section(QStringLiteral("All runs"), QStringLiteral("runs"));
    if (study.rows.size() > mostRows) {
        addTableNote(page, study,
                     QStringLiteral("%1 runs are too many for a page.").arg(study.rows.size()));
        return;
    }
    addTableNote(page, study,
                 QStringLiteral("A participant's name leads to the subject's page, a run's to its "
                                "own."));
    page.openTable(QStringList{QStringLiteral("Participant"), QStringLiteral("Run"),
                               QStringLiteral("Atlas"), QStringLiteral("Status")} +
                       ledgerColumns(),
                   4);
    for (const StudySummary::Row &row : study.rows) {
        std::vector<PageCell> cells{{row.participant, row.page}};
        for (const std::vector<PageCell> &more : {runCells(row.run), ledgerCells(row.run.ledger)})
            cells.insert(cells.end(), more.begin(), more.end());
        page.row(cells);
    }
    page.closeTable();
}

} // namespace

QByteArray studyPage(const StudySummary &study)
{
    const QString title = study.title.isEmpty() ? QStringLiteral("Study") : study.title;
    HtmlPage page(title);
    page.element("h1", title);
    page.element("p",
                 QStringLiteral("%1 participants. Runs by atlases: %2.")
                     .arg(participantCount(study.rows))
                     .arg(statusText(runsOf(study.rows))),
                 "lead");
    page.contents({{QStringLiteral("undone"), QStringLiteral("Not done, and why")},
                   {QStringLiteral("distributions"), QStringLiteral("Motion and what is left")},
                   {QStringLiteral("settings"), QStringLiteral("Settings")},
                   {QStringLiteral("runs"), QStringLiteral("All runs")},
                   {QStringLiteral("meaning"), QStringLiteral("Columns")}});
    addUndone(page, study);
    addDistributions(page, study.rows);
    addSettings(page, study);
    addRuns(page, study);
    addLedgerMeanings(page);
    return page.finish();
}

} // namespace corvane
