// SPDX-License-Identifier: GPL-3.0-or-later
// A protocol on the volumes that are kept, and what a header tells of a cleaning.
#include "host/import/cleaned_run.h"
#include "host/import/cleaning_choice.h"
#include "tests/host/support/host_files.h"
#include "tests/host/support/notes.h"
#include "tests/signals/error_text.h"

#include <QFileInfo>
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

class ConfoundsBeside : public testing::Test
{
protected:
    void make(std::initializer_list<const char *> names) const
    {
        for (const char *name : names)
            putBytes(m_folder.path(name), "csf\n1\n");
    }
    std::string found(const char *run) const
    {
        const QString path = confoundsBeside(m_folder.path(run));
        return path.isEmpty() ? "none" : QFileInfo(path).fileName().toStdString();
    }

private:
    TemporaryFolder m_folder;
};

TEST_F(ConfoundsBeside, AreThoseWithTheMostOfTheRunsEntities)
{
    make({"sub-01_task-rest_desc-confounds_timeseries.tsv",
          "sub-01_task-rest_run-2_desc-confounds_timeseries.tsv",
          "sub-01_task-rest_run-3_desc-confounds_timeseries.tsv",
          "sub-02_task-rest_desc-confounds_timeseries.tsv"});
    EXPECT_EQ(found("sub-01_task-rest_run-2_space-T1w_desc-preproc_bold.nii.gz"),
              "sub-01_task-rest_run-2_desc-confounds_timeseries.tsv");
    EXPECT_EQ(found("sub-01_task-rest_space-T1w_desc-preproc_bold.nii.gz"),
              "sub-01_task-rest_desc-confounds_timeseries.tsv");
    EXPECT_EQ(found("sub-03_task-rest_bold.nii.gz"), "none");
}

TEST_F(ConfoundsBeside, OfAnOlderPipelineAreFoundAndTwoAsGoodAreNone)
{
    make({"sub-01_task-rest_desc-confounds_regressors.tsv"});
    EXPECT_EQ(found("sub-01_task-rest_bold.nii.gz"),
              "sub-01_task-rest_desc-confounds_regressors.tsv");
    make({"sub-01_task-rest_desc-confounds_timeseries.tsv"});
    EXPECT_EQ(found("sub-01_task-rest_bold.nii.gz"), "none");
}

TEST(CleaningChoice, BecomesARequestAndBack)
{
    const auto request = cleaningOf({QStringLiteral("a.tsv"), QStringLiteral("36P"), 0.4});
    EXPECT_EQ(request->strategy.strategy, "36P");
    EXPECT_EQ(request->strategy.fd_threshold, 0.4);
    const CleaningChoice choice = choiceOf(*request);
    EXPECT_EQ(choice.confounds, QStringLiteral("a.tsv"));
    EXPECT_EQ(choice.strategy, QStringLiteral("36P"));
    EXPECT_EQ(choice.fdThreshold, 0.4);
    EXPECT_TRUE(strategyNames().contains(QStringLiteral("36P")));
    EXPECT_FALSE(strategyNames().join(QLatin1Char(' ')).contains(QLatin1String("columns")));
    EXPECT_TRUE(strategyText(QStringLiteral("scrubbing")).contains(QLatin1String("left out: FD")));
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
