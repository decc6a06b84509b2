// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/report/html_page.h"

#include <QJsonObject>

namespace corvane
{

/// What a page says of a number of the ledger (ledgerJson() of host/extract/run_cleaning.h).
struct LedgerLine {
    const char *key;
    const char *name;
    const char *unit;
    const char *explanation;
};

const std::vector<LedgerLine> &ledgerLines();

/// A number of a ledger as pages show it; "n/a" for one that is not known.
QString ledgerNumber(const QJsonObject &ledger, const char *key);

/// A table of all numbers with what they mean.
void addLedgerTable(HtmlPage &page, const QJsonObject &ledger);

/// For tables with a row for each run: the columns' names, and a run's cells.
QStringList ledgerColumns();
std::vector<PageCell> ledgerCells(const QJsonObject &ledger);

/// A section with what each column means.
void addLedgerMeanings(HtmlPage &page);

} // namespace corvane
