// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/derivatives/bids_names.h"

#include <gtest/gtest.h>

namespace corvane
{
namespace
{

QString text(const char *latin)
{
    return QString::fromLatin1(latin);
}

TEST(BidsName, HasEntitiesSuffixAndEnding)
{
    const BidsName name =
        bidsName(text("/data.v1/sub-01_task-rest_space-T1w_desc-preproc_bold.nii.gz"));
    EXPECT_EQ(name.file, text("sub-01_task-rest_space-T1w_desc-preproc_bold.nii.gz"));
    EXPECT_EQ(name.entities.join(' '), text("sub-01 task-rest space-T1w desc-preproc"));
    EXPECT_EQ(name.suffix, text("bold"));
    EXPECT_EQ(name.ending, text(".nii.gz"));
    EXPECT_EQ(name.label(text("task")), text("rest"));
    EXPECT_EQ(name.label(text("run")), QString());
    EXPECT_EQ(name.label(text("ask")), QString());
}

TEST(BidsName, EndsAtItsFirstDot)
{
    const BidsName name = bidsName(text("sub-01_space-fsLR_den-91k_bold.dtseries.nii"));
    EXPECT_EQ(name.suffix, text("bold"));
    EXPECT_EQ(name.ending, text(".dtseries.nii"));
}

TEST(BidsName, MayLackEachOfItsParts)
{
    EXPECT_EQ(bidsName(text("sub-01")).suffix, QString());
    EXPECT_EQ(bidsName(text("sub-01")).entities.join(' '), text("sub-01"));
    EXPECT_EQ(bidsName(text("sub-01.html")).ending, text(".html"));
    EXPECT_EQ(bidsName(text("README")).suffix, text("README"));
    EXPECT_EQ(bidsName(text(".bidsignore")).suffix, QString());
    EXPECT_TRUE(bidsName(text("README")).entities.isEmpty());
}

TEST(RunPrefix, IsTheNameWithoutDescAndSuffix)
{
    EXPECT_EQ(runPrefix(text("a/sub-01_task-rest_space-T1w_res-2_desc-preproc_bold.nii.gz")),
              text("sub-01_task-rest_space-T1w_res-2"));
    EXPECT_EQ(runPrefix(text("a/run.nii.gz")), text("run"));
}

} // namespace
} // namespace corvane
