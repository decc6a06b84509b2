// SPDX-License-Identifier: GPL-3.0-or-later
#include "dataset/counted.h"

#include <gtest/gtest.h>

TEST(Counted, HasTheGrammarOfItsNumber)
{
    EXPECT_EQ(counted(0, "volume"), QStringLiteral("0 volumes"));
    EXPECT_EQ(counted(1, "volume"), QStringLiteral("1 volume"));
    EXPECT_EQ(counted(2, "volume"), QStringLiteral("2 volumes"));
    EXPECT_EQ(counted(1, "matrix", "matrices"), QStringLiteral("1 matrix"));
    EXPECT_EQ(counted(21, "matrix", "matrices"), QStringLiteral("21 matrices"));
}
