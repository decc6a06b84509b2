// SPDX-License-Identifier: GPL-3.0-or-later
#include <atomic>
#include <stdexcept>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "statistics/parallel.h"
#include "statistics/text.h"

namespace
{

using namespace statistics;

TEST(Parallel, EachChunkOnce)
{
    for (const int threads : {0, 1, 2, 7}) {
        for (const int chunks : {0, 1, 5, 100}) {
            std::vector<std::atomic<int>> done(static_cast<std::size_t>(chunks));
            std::atomic<int> beyond{0};
            for_each_chunk(chunks, threads, [&](std::ptrdiff_t chunk, int worker) {
                ++done[static_cast<std::size_t>(chunk)];
                beyond += worker < 0 || worker >= thread_count(threads) ? 1 : 0;
            });
            for (const std::atomic<int> &count : done) {
                EXPECT_EQ(count, 1);
            }
            EXPECT_EQ(beyond, 0);
        }
    }
}

TEST(Parallel, TheFirstExceptionEndsTheRest)
{
    for (const int threads : {1, 4}) {
        std::atomic<int> done{0};
        EXPECT_THROW(for_each_chunk(100000, threads,
                                    [&](std::ptrdiff_t, int) {
                                        ++done;
                                        throw std::runtime_error("no");
                                    }),
                     std::runtime_error);
        EXPECT_LE(done, threads);
    }
}

TEST(Parallel, OneOfTwoExceptionsAtOnceIsThrown)
{
    std::atomic<int> started{0};
    EXPECT_THROW(for_each_chunk(2, 2,
                                [&](std::ptrdiff_t, int) {
                                    ++started;
                                    while (started < 2) {
                                        std::this_thread::yield();
                                    }
                                    throw std::runtime_error("no");
                                }),
                 std::runtime_error);
}

TEST(Text, NumbersWithoutALocale)
{
    EXPECT_EQ(number_in(" -1.5e-3 "), -1.5e-3);
    EXPECT_EQ(number_in("+7"), 7.0);
    for (const char *text : {"", " ", "1,5", "1.5x", "0x10", "inf", "nan", "+-1", "1e999", "--1"}) {
        EXPECT_FALSE(number_in(text)) << text;
    }
    EXPECT_EQ(trimmed("\t a b \r\n"), "a b");
    EXPECT_EQ(joined({"a", "b", "c"}, "-"), "a-b-c");
    EXPECT_EQ(counted(1, "edge") + ", " + counted(0, "edge"), "1 edge, 0 edges");
}

} // namespace
