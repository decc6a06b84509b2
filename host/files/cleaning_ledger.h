// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/nrrd_header.h"

#include <QString>
#include <optional>

namespace corvane
{

/// How a run was cleaned, and what that left of it.
struct CleaningLedger {
    static constexpr int longestMethod = 4096; ///< characters

    QString method;    ///< in one line, not empty
    int volumes = 0;   ///< that the run had before: the sum of the next three, 1 or more
    int nonSteady = 0; ///< left out because the signal was not yet steady
    int censored = 0;  ///< left out for other reasons
    int kept = 0;      ///< that the cleaning went by
    int rank = 0;      ///< of the design: how many directions it took out of each time course
    double degreesOfFreedom = 0; ///< left; not whole where it is an estimate
    double secondsKept = 0;
    /// Mean framewise displacement in mm of all volumes and of those kept; unset where unknown.
    std::optional<double> meanFdBefore;
    std::optional<double> meanFdAfter;
};

/// The names of the keys that hold a ledger. They stand in a header all together, or none of them.
QStringList cleaningKeys();

/// The first rule that a ledger breaks.
std::optional<BrokenRule> brokenRule(const CleaningLedger &ledger);

/// In one line: "36P, order joint: 154 of 200 volumes kept, 110 degrees of freedom left".
QString ledgerText(const CleaningLedger &ledger);

void addCleaning(NrrdWriter &header, const CleaningLedger &ledger);

/// The ledger of a header, unset when it has none of the keys. Throws InputError when some are
/// missing or hold no numbers; the rest is told by brokenRule.
std::optional<CleaningLedger> readCleaning(const NrrdHeader &header);

} // namespace corvane
