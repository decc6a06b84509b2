// SPDX-License-Identifier: GPL-3.0-or-later
#include <system_error>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "statistics/parallel.h"
#include "tests/support/no_further_thread.h"

namespace
{

TEST(Parallel, WithoutAFurtherThreadTheCallerDoesTheWork)
{
    const NoFurtherThread refused;
    ASSERT_THROW(std::thread([] {}), std::system_error);
    std::vector<int> workers;
    statistics::for_each_chunk(5, 4, [&](std::ptrdiff_t chunk, int worker) {
        EXPECT_EQ(chunk, static_cast<std::ptrdiff_t>(workers.size()));
        workers.push_back(worker);
    });
    EXPECT_EQ(workers, std::vector<int>(5, 0));
}

} // namespace
