// SPDX-License-Identifier: GPL-3.0-or-later

#include <csignal>
#include <sys/resource.h>

#include "tests/nodalis/csv_fixture.h"

namespace
{

TEST_F(Csv, LeavesNothingBehindOnAFullDisk)
{
    std::ofstream(path("old.csv")) << "old";
    struct rlimit before = {};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    struct rlimit small = before;
    small.rlim_cur = 4096;
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    const Eigen::MatrixXf matrix = Eigen::MatrixXf::Random(100, 100);
    const bool replaced = nodalis::to_csv(matrix, path("old.csv"));
    const bool created = nodalis::to_csv(matrix, path("new.csv"));
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &before), 0);
    std::signal(SIGXFSZ, handler);
    EXPECT_FALSE(replaced);
    EXPECT_FALSE(created);
    EXPECT_EQ(files(), Names{"old.csv"});
    EXPECT_EQ(contents(path("old.csv")), "old");
}

} // namespace
