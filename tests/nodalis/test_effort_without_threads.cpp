// SPDX-License-Identifier: GPL-3.0-or-later
#include <system_error>
#include <thread>

#include <gtest/gtest.h>
#include <nodalis/nodalis.h>

#include "tests/nodalis/graphs.h"
#include "tests/support/no_further_thread.h"

namespace
{

TEST(Effort, WithoutAFurtherThreadTheCallerDoesTheWork)
{
    graphs::Random random(74);
    const Eigen::MatrixXf graph = graphs::random(130, 0.3, graphs::Weights{}, random);
    const Eigen::ArrayXf local = nodalis::local_efficiency(graph);
    const Eigen::ArrayXf nodal = nodalis::nodal_global_efficiency(graph);
    const NoFurtherThread refused;
    ASSERT_THROW(std::thread([] {}), std::system_error);
    const nodalis::Effort four = {4, {}};
    EXPECT_TRUE((nodalis::local_efficiency(graph, four) == local).all());
    EXPECT_TRUE((nodalis::nodal_global_efficiency(graph, four) == nodal).all());
}

} // namespace
