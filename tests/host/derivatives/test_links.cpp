// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/derivatives/run_index.h"
#include "tests/host/support/host_files.h"

namespace corvane
{
namespace
{

class LinkedDataset : public testing::Test
{
protected:
    LinkedDataset()
    {
        EXPECT_TRUE(QDir().mkpath(folder.path("data/sub-01/func")));
        putBytes(folder.path("data/sub-01/func/sub-01_desc-confounds_timeseries.tsv"), {});
    }

    void link(const char *from, const char *to)
    {
        ASSERT_TRUE(QFile::link(QString::fromLatin1(to), folder.path(from)));
    }

    StudyRun onlyRun()
    {
        const std::vector<StudyRun> runs = indexRuns(folder.path("data"), {});
        EXPECT_EQ(runs.size(), 1U);
        return runs.empty() ? StudyRun{} : runs.front();
    }

    const TemporaryFolder folder;
};

TEST_F(LinkedDataset, SaysWhenContentWasNotFetched)
{
    link("data/sub-01/func/sub-01_task-rest_space-T1w_desc-preproc_bold.nii.gz", "../no/content");
    EXPECT_EQ(onlyRun().reason.toStdString(),
              "sub-01_task-rest_space-T1w_desc-preproc_bold.nii.gz: a link that leads nowhere");
}

TEST_F(LinkedDataset, MayHaveParticipantsElsewhere)
{
    ASSERT_TRUE(QDir().rename(folder.path("data/sub-01"), folder.path("elsewhere")));
    link("data/sub-01", "../elsewhere");
    putBytes(folder.path("elsewhere/func/sub-01_task-rest_space-T1w_desc-preproc_bold.nii.gz"), {});
    EXPECT_EQ(onlyRun().reason.toStdString(), "");
    EXPECT_EQ(onlyRun().folder, QStringLiteral("sub-01/func"));
}

} // namespace
} // namespace corvane
