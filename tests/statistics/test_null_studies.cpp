// SPDX-License-Identifier: GPL-3.0-or-later
//
// A few of the simulated studies without effects: their counts are the same in every run. The
// bounds are the exact binomial interval of 99.99 % for 5 % of 300.
#include <stdexcept>

#include <gtest/gtest.h>

#include "tests/statistics/null_studies.h"

namespace
{

using namespace null_studies;

constexpr int studies = 300;
constexpr int least = 3;
constexpr int most = 32;

const Kind &kind_of(const char *name)
{
    for (const Kind &kind : kinds()) {
        if (kind.name == name) {
            return kind;
        }
    }
    throw std::runtime_error(std::string("no kind of study is called ") + name);
}

class HonestNull : public testing::TestWithParam<const char *>
{
};

TEST_P(HonestNull, RejectsFiveInAHundred)
{
    const Counts counts = test_studies(kind_of(GetParam()), studies);
    EXPECT_TRUE(is_honest(counts, least, most)) << "max-T: " << counts.max_t;
}

INSTANTIATE_TEST_SUITE_P(Studies, HonestNull,
                         testing::Values("two groups", "two groups, covariates",
                                         "one sample, covariates", "blocks, within them",
                                         "blocks, within them and in the model, covariates"));

TEST(HonestNull, PermutationsThatIgnoreBlocksRejectMore)
{
    const Counts counts = test_studies(kind_of("blocks, permuted freely"), studies);
    EXPECT_GT(counts.max_t, most);
    EXPECT_FALSE(is_honest(counts, least, most));
}

} // namespace
