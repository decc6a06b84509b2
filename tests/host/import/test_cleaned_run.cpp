// SPDX-License-Identifier: GPL-3.0-or-later
// A protocol on the volumes that are kept, and what a header tells of a cleaning.
#include "host/import/cleaned_run.h"
#include "tests/host/support/host_files.h"
#include "tests/host/support/notes.h"
#include "tests/signals/error_text.h"

#include <gmock/gmock.h>

namespace corvane
{
namespace
{

using testing::ElementsAre;
using testing::HasSubstr;

Prt protocol()
{
    Prt prt;
    prt.conditions = {{QStringLiteral("rest"), {{1, 5}, {11, 15}}},
                      {QStringLiteral("cue"), {{6, 6}, {16, 16}}}};
    return prt;
}

std::vector<Eigen::Index> without(std::initializer_list<Eigen::Index> gone)
{
    std::vector<Eigen::Index> kept;
    for (Eigen::Index volume = 0; volume < 20; ++volume)
        if (std::find(gone.begin(), gone.end(), volume) == gone.end())
            kept.push_back(volume);
    return kept;
}

TEST(RenumberedProtocol, IsTheSameWhereAllVolumesAreKept)
{
    QStringList notes;
    EXPECT_TRUE(renumberedProtocol(protocol(), without({}), notes) == protocol());
    EXPECT_EQ(joined(notes), "");
}

TEST(RenumberedProtocol, IntervalsMoveShrinkAndGoWhichIsSaid)
{
    QStringList notes;
    // Volumes 1, 6, 13 and 20 as the protocol counts them.
    const Prt found = renumberedProtocol(protocol(), without({0, 5, 12, 19}), notes);
    EXPECT_THAT(found.conditions[0].intervals,
                ElementsAre(std::make_pair(1, 4), std::make_pair(9, 12)));
    EXPECT_THAT(found.conditions[1].intervals, ElementsAre(std::make_pair(13, 13)));
    EXPECT_EQ(joined(notes), "protocol: counts the volumes that are kept, not those of the run\n"
                             "protocol: \"rest\" 1-5 keeps 4 of 5 volumes, now 1-4\n"
                             "protocol: \"rest\" 11-15 keeps 4 of 5 volumes, now 9-12\n"
                             "protocol: \"cue\" 6-6 is gone: none of its volumes is kept");
}

TEST(RenumberedProtocol, AnIntervalThatOnlyMovesIsNotTold)
{
    QStringList notes;
    const Prt found = renumberedProtocol(protocol(), without({7, 8}), notes);
    EXPECT_THAT(found.conditions[0].intervals,
                ElementsAre(std::make_pair(1, 5), std::make_pair(9, 13)));
    EXPECT_EQ(joined(notes), "");
}

TEST(ImportCleaning, KeepsTheUnitOfTheRun)
{
    CleaningRequest request;
    request.strategy.strategy = "none";
    request.settings.standardize = signals::Standardize::zscore;
    QStringList notes;
    EXPECT_THAT(error_text<signals::UsageError>([&] { planImportCleaning(request, 20, 2, notes); }),
                HasSubstr("an import keeps the unit of the run"));
}

TEST(ImportCleaning, TheLedgerGoesIntoTheHeader)
{
    CleaningRequest request;
    request.strategy.strategy = "none";
    request.strategy.dummy_scans = 3;
    QStringList notes;
    const RunCleaning cleaning = planImportCleaning(request, 20, 2, notes);
    const CleaningLedger ledger = ledgerOf(request, cleaning);
    EXPECT_EQ(ledger.method, QStringLiteral("none, order joint"));
    EXPECT_EQ(ledger.volumes, 20);
    EXPECT_EQ(ledger.nonSteady, 3);
    EXPECT_EQ(ledger.kept, 17);
    EXPECT_EQ(ledger.rank, 1);
    EXPECT_EQ(ledger.degreesOfFreedom, 16);
    EXPECT_EQ(ledger.secondsKept, 34);
    EXPECT_FALSE(ledger.meanFdBefore.has_value());
    EXPECT_FALSE(brokenRule(ledger).has_value());
}

} // namespace
} // namespace corvane
