// SPDX-License-Identifier: GPL-3.0-or-later
// The odd folders that users have, as the index tells of them before anything is read.
#include "host/derivatives/run_index.h"
#include "tests/host/support/host_files.h"
#include "tests/host/support/notes.h"
#include "tests/host/support/small_study.h"
#include "tests/support/other_user.h"

namespace corvane
{
namespace
{

TEST(OddFolders, GiveARowForEachRunAndEachOneThatIsNotThere)
{
    const TemporaryFolder folder;
    const SmallStudy study(folder.path());
    addOddParticipants(study);
    RunFilter filter;
    filter.tasks = QStringList{QStringLiteral("rest")};
    QStringList lines;
    for (const StudyRun &run : indexRuns(study.path(), filter)) {
        lines +=
            run.reason.isEmpty() ? run.prefix : run.participant + QStringLiteral(": ") + run.reason;
        EXPECT_EQ(run.reason.isEmpty(), run.repetitionTime == 2.0 && !run.confounds.isEmpty());
    }
    EXPECT_EQ(joined(lines), "sub-01_task-rest_space-T1w\n"
                             "sub-02_task-rest_space-MNI152NLin6Asym\n"
                             "sub-02_task-rest_space-T1w\n"
                             "sub-03_task-rest_run-1_space-T1w\n"
                             "sub-03_task-rest_run-2_space-T1w\n"
                             "04: no table of confounds; found: none\n"
                             "05: no run of task-rest; found: task-nback\n"
                             "sub-06_task-rest_space-T1w\n"
                             "sub-07_task-rest_space-T1w\n"
                             "sub-08_task-rest_space-T1w\n"
                             "sub-09_ses-a_task-rest_space-T1w\n"
                             "sub-09_ses-b_task-rest_space-T1w");
}

TEST(OddFolders, ThatMayNotBeListedAreNoEmptyOnes)
{
    const TemporaryFolder folder;
    const SmallStudy study(folder.path());
    addOddParticipants(study);
    RunFilter filter;
    filter.participants = QStringList{QStringLiteral("01"), QStringLiteral("02")};
    const QFileDevice::Permissions whole = QFileInfo(study.path()).permissions();
    const QString closed = study.path(QStringLiteral("sub-01/func"));
    QFile::setPermissions(folder.path(), whole | QFile::ReadGroup | QFile::ExeGroup);
    ASSERT_TRUE(QFile::setPermissions(closed, QFile::ExeOwner | QFile::ExeGroup));
    std::vector<StudyRun> runs;
    {
        const OtherUser user;
        runs = indexRuns(study.path(), filter);
    }
    QFile::setPermissions(closed, whole);
    ASSERT_EQ(runs.size(), 3U);
    EXPECT_EQ(runs[0].participant, QStringLiteral("01"));
    EXPECT_EQ(runs[0].reason.toStdString(),
              "sub-01/func: listing: found Permission denied, expected a folder that can be read");
    EXPECT_EQ(runs[1].reason, QString());
}

TEST(OddFolders, OfTheOlderNameGiveTheirConfounds)
{
    const TemporaryFolder folder;
    const SmallStudy study(folder.path());
    addOddParticipants(study);
    RunFilter filter;
    filter.participants = QStringList{QStringLiteral("06")};
    const std::vector<StudyRun> runs = indexRuns(study.path(), filter);
    ASSERT_EQ(runs.size(), 1U);
    EXPECT_EQ(
        runs[0].confounds,
        study.path(QStringLiteral("sub-06/func/sub-06_task-rest_desc-confounds_regressors.tsv")));
    EXPECT_EQ(runs[0].mask, study.path(QStringLiteral(
                                "sub-06/func/sub-06_task-rest_space-T1w_desc-brain_mask.nii.gz")));
}

} // namespace
} // namespace corvane
