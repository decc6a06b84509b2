// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/report/ledger_table.h"

#include <cmath>

namespace corvane
{

const std::vector<LedgerLine> &ledgerLines()
{
    static const std::vector<LedgerLine> lines{
        {"Volumes", "Volumes", "", "How many volumes the run's file has."},
        {"NonSteady", "Non-steady", "",
         "Volumes at the start, before the magnetisation was steady. They never count."},
        {"Censored", "Left out", "",
         "Further volumes that were left out: for motion, or by a list of the user's."},
        {"Kept", "Kept", "", "Volumes that all results rest on."},
        {"Rank", "Rank of the design", "",
         "How many independent directions the cleaning took out of each series, mean and trend "
         "counted."},
        {"DegreesOfFreedom", "Degrees of freedom", "",
         "What is left to estimate correlations from: kept volumes less the rank, and with a "
         "band-pass at most what the band holds. How sure a correlation is depends on it."},
        {"SecondsKept", "Time kept", "s",
         "Kept volumes times the repetition time. Many studies ask for four or five minutes."},
        {"MeanFDBefore", "Mean FD before", "mm",
         "Mean framewise displacement, the head's motion from volume to volume, of all volumes but "
         "the first and non-steady ones."},
        {"MeanFDAfter", "Mean FD after", "mm", "The same of the kept volumes."},
    };
    return lines;
}

QString ledgerNumber(const QJsonObject &ledger, const char *key)
{
    const QJsonValue value = ledger.value(QLatin1String(key));
    if (!value.isDouble())
        return QStringLiteral("n/a");
    const double number = value.toDouble();
    const bool isWhole = number == std::floor(number);
    const bool isFreedom = QLatin1String(key) == QLatin1String("DegreesOfFreedom");
    const bool about =
        isFreedom && ledger.value(QLatin1String("DegreesOfFreedomAreEstimate")).toBool();
    return (about ? QStringLiteral("about ") : QString()) +
           QString::number(number, 'g', isWhole ? 12 : 4);
}

void addLedgerTable(HtmlPage &page, const QJsonObject &ledger)
{
    page.openTable(
        {QStringLiteral("What"), QStringLiteral("How much"), QStringLiteral("What it means")});
    for (const LedgerLine &line : ledgerLines()) {
        const QString number = ledgerNumber(ledger, line.key);
        const bool hasUnit = line.unit[0] != '\0' && number != QLatin1String("n/a");
        page.row(
            {{QString::fromUtf8(line.name), "name"},
             {hasUnit ? number + QLatin1Char(' ') + QLatin1String(line.unit) : number, "number"},
             {QString::fromUtf8(line.explanation), "wide"}});
    }
    page.closeTable();
}

void addLedgerMeanings(HtmlPage &page)
{
    page.section(QStringLiteral("What the columns mean"), QStringLiteral("meaning"));
    page.openTable({QStringLiteral("Column"), QStringLiteral("What it means")});
    for (const LedgerLine &line : ledgerLines())
        page.row({{QString::fromUtf8(line.name), "name"},
                  {QString::fromUtf8(line.explanation), "wide"}});
    page.closeTable();
}

QStringList ledgerColumns()
{
    QStringList columns;
    for (const LedgerLine &line : ledgerLines())
        columns += line.unit[0] == '\0' ? QLatin1String(line.name)
                                        : QStringLiteral("%1 [%2]").arg(QLatin1String(line.name),
                                                                        QLatin1String(line.unit));
    return columns;
}

std::vector<PageCell> ledgerCells(const QJsonObject &ledger)
{
    std::vector<PageCell> cells;
    for (const LedgerLine &line : ledgerLines())
        cells.emplace_back(ledgerNumber(ledger, line.key), "number");
    return cells;
}

} // namespace corvane
