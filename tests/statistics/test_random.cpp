// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <vector>

#include <gtest/gtest.h>

#include "statistics/random.h"

namespace
{

using namespace statistics;
using Words = std::array<std::uint32_t, 4>;

TEST(Philox, KnownAnswersOfItsAuthors)
{
    EXPECT_EQ(philox({0, 0, 0, 0}, {0, 0}),
              (Words{0x6627e8d5, 0xe169c58d, 0xbc57ac4c, 0x9b00dbd8}));
    EXPECT_EQ(philox({0xffffffff, 0xffffffff, 0xffffffff, 0xffffffff}, {0xffffffff, 0xffffffff}),
              (Words{0x408f276d, 0x41c83b0e, 0xa20bc7c6, 0x6d5451fd}));
    EXPECT_EQ(philox({0x243f6a88, 0x85a308d3, 0x13198a2e, 0x03707344}, {0xa4093822, 0x299f31d0}),
              (Words{0xd16cfe09, 0x94fdcceb, 0x5001e420, 0x24126ea1}));
}

std::vector<std::uint32_t> words(std::uint64_t seed, Purpose purpose, std::uint64_t number)
{
    RandomSequence sequence(seed, purpose, number);
    std::vector<std::uint32_t> taken(9);
    std::generate(taken.begin(), taken.end(), [&] { return sequence.next(); });
    return taken;
}

TEST(RandomSequence, DependsOnSeedPurposeAndNumberOnly)
{
    const auto first = words(1, Purpose::permutation, 0);
    EXPECT_EQ(first, words(1, Purpose::permutation, 0));
    EXPECT_NE(first, words(2, Purpose::permutation, 0));
    EXPECT_NE(first, words(std::uint64_t{1} << 32, Purpose::permutation, 0));
    EXPECT_NE(first, words(1, Purpose::sign, 0));
    EXPECT_NE(first, words(1, Purpose::permutation, 1));
    EXPECT_NE(first, words(1, Purpose::permutation, std::uint64_t{1} << 32));
    // Words go on from block to block of the generator.
    const Words second_block = philox({1, 0, 0, 0}, {1, 0});
    EXPECT_EQ(first[4], second_block[0]);
    EXPECT_EQ(first[7], second_block[3]);
}

TEST(RandomSequence, BelowIsUniform)
{
    RandomSequence sequence(5, Purpose::permutation, 0);
    for (const std::uint32_t n : {1U, 2U, 3U, 7U, 48U}) {
        std::vector<int> counts(n, 0);
        for (int i = 0; i < 20000; ++i) {
            const std::uint32_t value = sequence.below(n);
            ASSERT_LT(value, n);
            ++counts[value];
        }
        // Chi-squared beyond n - 1 + 5 standard deviations would be a chance of less than 1e-5.
        double chi = 0.0;
        const double expected = 20000.0 / n;
        for (const int count : counts) {
            chi += (count - expected) * (count - expected) / expected;
        }
        EXPECT_LE(chi, n - 1 + 5.0 * std::sqrt(2.0 * n)) << n;
    }
}

TEST(RandomSequence, BelowRejectsWhatWouldMakeABias)
{
    // Of 2^32 words 2^32 mod n are left over: for this n a fourth of all.
    const std::uint32_t n = 3U << 30;
    RandomSequence plain(9, Purpose::sign, 3);
    RandomSequence bounded(9, Purpose::sign, 3);
    int rejected = 0;
    for (int i = 0; i < 1000; ++i) {
        const std::uint32_t value = bounded.below(n);
        std::uint64_t product = std::uint64_t{plain.next()} * n;
        while (static_cast<std::uint32_t>(product) < (1U << 30)) {
            ++rejected;
            product = std::uint64_t{plain.next()} * n;
        }
        ASSERT_EQ(value, product >> 32);
    }
    EXPECT_GT(rejected, 200);
}

TEST(RandomSequence, EveryOrderIsEquallyLikely)
{
    std::map<std::array<int, 4>, int> counts;
    for (std::uint64_t number = 0; number < 24000; ++number) {
        std::array<int, 4> order = {0, 1, 2, 3};
        RandomSequence(17, Purpose::permutation, number).shuffle(order.data(), 4);
        ++counts[order];
    }
    ASSERT_EQ(counts.size(), 24U);
    for (const auto &[order, count] : counts) {
        EXPECT_NEAR(count, 1000, 5 * 31) << order[0] << order[1] << order[2] << order[3];
    }
}

} // namespace
