// SPDX-License-Identifier: GPL-3.0-or-later
//
// The same seed gives the same bytes on every system: the program for Windows knows these, too.
#include <gtest/gtest.h>

#include "tests/statistics/same_bytes.h"

namespace
{

TEST(SameBytes, Rearrangements)
{
    EXPECT_EQ(same_bytes::of_rearrangements(), same_bytes::rearrangements);
}

TEST(SameBytes, PermutationTestOnAnyNumberOfThreads)
{
    for (const int threads : {1, 2, 5}) {
        EXPECT_EQ(same_bytes::of_test(threads), same_bytes::test) << threads;
    }
}

} // namespace
