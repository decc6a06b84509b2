// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/compute_settings.h"
#include "signals/design.h"
#include "signals/ledger.h"
#include "signals/strategies.h"

#include <QJsonObject>
#include <QString>
#include <QStringList>

/// @file
/// From a table of confounds and the name of a strategy to a design by which a run is cleaned.

namespace corvane
{

inline constexpr NamedValue<signals::Standardize> standardizeNames[] = {
    {signals::Standardize::none, "none"},
    {signals::Standardize::zscore, "zscore"},
    {signals::Standardize::psc, "psc"}};

/// How a run is to be cleaned.
struct CleaningRequest {
    QString confounds; ///< path of the table; empty for none
    QString censor;    ///< path of a list of volumes to leave out; empty for none
    /// Its volumes, order and list of volumes to leave out are filled in by planCleaning.
    signals::StrategyRequest strategy;
    signals::Settings settings;
    signals::Limits limits;
};

struct RunCleaning {
    signals::ConfoundsTable table; ///< without confounds one without columns
    signals::Selection selection;
    signals::Design design;
};

/// Reads the files of the request and makes the design for a run. What the user should know is
/// appended to `notes`. Throws InputError and signals::Error, which name the file;
/// signals::UsageError for what cannot be asked for; signals::Refused, with all numbers, when too
/// little is left of the run.
RunCleaning planCleaning(const CleaningRequest &request, int volumes, double repetitionTime,
                         QStringList &notes);

/// The same strategy's volumes without its regressors: what the run would be uncleaned.
signals::Design uncleanedDesign(const RunCleaning &cleaning, double repetitionTime);

/// What was done, in one line: "36P, order joint, high-pass 0.008 Hz, FD > 0.5 mm".
QString cleaningText(const CleaningRequest &request, const RunCleaning &cleaning);

/// The ledger as an object of JSON; what is not known is null.
QJsonObject ledgerJson(const signals::Ledger &ledger);

} // namespace corvane
