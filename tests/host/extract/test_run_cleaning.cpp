// SPDX-License-Identifier: GPL-3.0-or-later
// From the files of a pipeline to a design.
#include "host/extract/run_cleaning.h"
#include "tests/host/support/host_files.h"
#include "tests/host/support/notes.h"
#include "tests/signals/error_text.h"

#include <cmath>
#include <gmock/gmock.h>

namespace corvane
{
namespace
{

using testing::HasSubstr;
using testing::StartsWith;

/// FD, standardised DVARS and six motion parameters; FD is large in volume 12.
QByteArray motionTable(int volumes = 30, int missingInTransX = 0)
{
    QByteArray text = "framewise_displacement\tstd_dvars";
    for (const char *name : {"trans_x", "trans_y", "trans_z", "rot_x", "rot_y", "rot_z"})
        text += QByteArray("\t") + name;
    text += '\n';
    for (int t = 0; t < volumes; ++t) {
        text += t == 0 ? "n/a" : t == 12 ? "0.9" : "0.1";
        text += t == 0 ? "\tn/a" : "\t1";
        for (int column = 0; column < 6; ++column)
            text += column == 0 && t > 0 && t == missingInTransX
                        ? QByteArray("\tn/a")
                        : '\t' + QByteArray::number(0.001 * ((t * (column + 3) + t * t) % 17));
        text += '\n';
    }
    return text;
}

class CleaningPlan : public testing::Test
{
protected:
    CleaningPlan()
    {
        request.confounds = m_folder.path("confounds.tsv");
        request.strategy.strategy = "motion6";
        write(motionTable());
    }
    void write(const QByteArray &bytes) { putBytes(request.confounds, bytes); }
    RunCleaning plan() { return planCleaning(request, 30, 2, notes); }
    QString path(const char *name) const { return m_folder.path(name); }

    CleaningRequest request;
    QStringList notes;

private:
    TemporaryFolder m_folder;
};

TEST_F(CleaningPlan, ColumnsVolumesAndLedger)
{
    request.strategy.fd_threshold = 0.5;
    const RunCleaning found = plan();
    const signals::Ledger &ledger = found.design.ledger;
    EXPECT_EQ(found.selection.regressors.names.size(), 6U);
    EXPECT_EQ(ledger.volumes, 30);
    EXPECT_EQ(ledger.censored, 1);
    EXPECT_EQ(ledger.kept, 29);
    EXPECT_EQ(ledger.rank, 8);
    EXPECT_EQ(ledger.degrees, 21);
    EXPECT_EQ(cleaningText(request, found),
              QStringLiteral("motion6, order joint, FD > 0.5 mm left out"));
    const QJsonObject json = ledgerJson(ledger);
    EXPECT_EQ(json[QLatin1String("Kept")].toInt(), 29);
    EXPECT_EQ(json[QLatin1String("DegreesOfFreedom")].toDouble(), 21);
}

TEST_F(CleaningPlan, WithoutConfoundsNothingIsTakenOut)
{
    request.confounds.clear();
    request.strategy.strategy = "none";
    const RunCleaning found = plan();
    EXPECT_EQ(found.design.ledger.kept, 30);
    EXPECT_EQ(found.design.ledger.rank, 1);
    EXPECT_TRUE(ledgerJson(found.design.ledger)[QLatin1String("MeanFDBefore")].isNull());
}

TEST_F(CleaningPlan, AFilterByItselfNeedsNoCosinesOfTheTable)
{
    QByteArray text = "cosine00";
    for (const char *name : {"trans_x", "trans_y", "trans_z", "rot_x", "rot_y", "rot_z"})
        for (const char *ending : {"", "_derivative1", "_power2", "_derivative1_power2"})
            text += QByteArray("\t") + name + ending;
    for (int t = 0; t < 60; ++t) {
        text += '\n' + QByteArray::number(std::cos(0.05 * (t + 0.5)));
        for (int column = 1; column <= 24; ++column)
            text += '\t' + QByteArray::number((t * (column + 3) + t * t * column) % 37);
    }
    write(text + '\n');
    request.strategy = {};
    request.strategy.strategy = "24P";
    EXPECT_EQ(planCleaning(request, 60, 2, notes).selection.regressors.names.size(), 25U);
    request.settings.order = signals::Order::butterworth;
    request.settings.high_pass = 0.01;
    EXPECT_EQ(planCleaning(request, 60, 2, notes).selection.regressors.names.size(), 24U);
}

TEST_F(CleaningPlan, ErrorsOfTheTableNameItsFile)
{
    const std::string file = request.confounds.toStdString() + ": ";
    write(motionTable(29));
    EXPECT_EQ(error_text<signals::Error>([&] { plan(); }),
              file + "column framewise_displacement ends before row 29 (from 0): the table has 29 "
                     "rows: expected 30, "
                     "one for each volume of the run");
    write(motionTable(31));
    EXPECT_EQ(error_text<signals::Error>([&] { plan(); }),
              file + "the table has 31 rows: expected 30, one for each volume of the run");
    write(motionTable());
    request.strategy.strategy = "simple";
    EXPECT_THAT(error_text<signals::Error>([&] { plan(); }),
                StartsWith(file + "the strategy simple needs columns that the table lacks: csf"));
    request.strategy.strategy = "motion6";
    write(motionTable(30, 4));
    EXPECT_THAT(error_text<signals::Error>([&] { plan(); }),
                StartsWith(file + "column trans_x, row 4 (from 0) is n/a"));
    request.strategy.strategy = "compcor";
    EXPECT_THAT(error_text<signals::Error>([&] { plan(); }),
                StartsWith(file + "the table's JSON is missing"));
}

TEST_F(CleaningPlan, WhatCannotBeAskedForIsAnErrorOfUsage)
{
    request.strategy.strategy = "simplest";
    EXPECT_THAT(error_text<signals::UsageError>([&] { plan(); }),
                HasSubstr("there is no strategy \"simplest\""));
}

TEST_F(CleaningPlan, ARunOfWhichTooLittleIsLeftIsRefusedWithAllNumbers)
{
    request.limits.seconds = 240;
    const std::string text = error_text<signals::Refused>([&] { plan(); });
    EXPECT_THAT(text, HasSubstr("60 s, expected at least 240 s"));
    EXPECT_THAT(text, HasSubstr("design of rank 8"));
}

TEST_F(CleaningPlan, AListOfVolumesJoinsTheOthers)
{
    request.censor = path("censor.txt");
    QByteArray lines;
    for (int t = 0; t < 30; ++t)
        lines += t == 3 || t == 12 ? "1\n" : "0\n";
    putBytes(request.censor, lines);
    request.strategy.fd_threshold = 0.5;
    request.strategy.min_segment = 0;
    const RunCleaning found = plan();
    EXPECT_EQ(found.design.ledger.censored, 2);
    EXPECT_EQ(cleaningText(request, found),
              QStringLiteral("motion6, order joint, FD > 0.5 mm left out, volumes left out by a "
                             "list"));
}

TEST_F(CleaningPlan, MotionParametersOfAnotherPackageTellWhatIsUnknown)
{
    write("0 0 0 1 1 1\n0 0 0 1.1 1 1\n0 0 0.001 1 1 1\n0.001 0 0 1 1 1\n0 0 0 1 1.1 1\n"
          "0 0.001 0 1 1 1\n0 0 0 1 1 1.1\n0 0 0 1 1 1\n0 0.002 0 1 1 1\n0 0 0 1.2 1 1.1\n"
          "0 0 0 1 1 1\n0 0 0 1 1.2 1\n");
    const auto small = [&] { return planCleaning(request, 12, 2, notes); };
    EXPECT_TRUE(std::isnan(small().design.ledger.mean_fd_before));
    EXPECT_THAT(joined(notes), HasSubstr("confounds.tsv: FD is not known"));
    request.strategy.motion_order = signals::MotionOrder::fsl;
    EXPECT_GT(small().design.ledger.mean_fd_before, 0);
}

TEST_F(CleaningPlan, TheUncleanedDesignHasTheSameVolumesAndTakesTheMeanAlone)
{
    request.strategy.fd_threshold = 0.5;
    const RunCleaning found = plan();
    const signals::Design plain = uncleanedDesign(found, 2);
    EXPECT_EQ(plain.rows, found.design.rows);
    EXPECT_EQ(plain.ledger.rank, 1);
}

} // namespace
} // namespace corvane
