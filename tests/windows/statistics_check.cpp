// SPDX-License-Identifier: GPL-3.0-or-later
//
// The group statistics on Windows: the same seed gives the same bytes as elsewhere, on one thread
// or two, and what the C library computes is right.
#include <cmath>
#include <cstdio>

#include "statistics/design.h"
#include "statistics/distributions.h"
#include "statistics/error.h"
#include "statistics/fisher_z.h"
#include "statistics/tangent.h"
#include "tests/statistics/same_bytes.h"

namespace
{

int failures = 0;
int passes = 0;

void check(bool passed, const char *what)
{
    if (passed) {
        ++passes;
        return;
    }
    ++failures;
    std::printf("failed: %s\n", what);
}

bool near(double actual, double expected)
{
    return std::abs(actual - expected) <= 1e-12 * std::abs(expected);
}

void check_bytes()
{
    check(same_bytes::of_rearrangements() == same_bytes::rearrangements, "bytes of permutations");
    check(same_bytes::of_test(1) == same_bytes::test, "bytes of a test on one thread");
    check(same_bytes::of_test(2) == same_bytes::test, "bytes of a test on two threads");
}

void check_functions()
{
    check(near(statistics::t_two_sided(2.6870134922422126, 46), 0.010000000000000092), "tail of t");
    check(near(statistics::f_upper_tail(40, 3, 96), 7.371425419303215e-17), "tail of F");
    Eigen::RowVectorXd edges(2);
    edges << 0.5, 1.0;
    check(statistics::fisher_z(edges).size() == 1, "clipped z");
    check(near(edges(0), 0.54930614433405485), "z");
    const statistics::TangentSpace space =
        statistics::tangent_space({Eigen::MatrixXd(Eigen::Vector2d(1, 4).asDiagonal()),
                                   Eigen::MatrixXd(Eigen::Vector2d(4, 1).asDiagonal())});
    check(std::abs(space.mean(0, 0) - 2.0) < 1e-6, "geometric mean");
}

void check_design()
{
    const statistics::Table table{{{"group", {"b", "a", "b", "a"}}, {"age", {"1", "2", "3", "5"}}}};
    const statistics::Design design = statistics::make_design("group * age", table);
    check(design.columns.size() == 4 && design.columns[3] == "group[b]:age", "design");
    check(design.matrix(2, 3) == 3.0, "entry of a design");
    bool refused = false;
    try {
        statistics::make_design("group + weight", table);
    } catch (const statistics::Error &) {
        refused = true;
    }
    check(refused, "unknown column");
}

} // namespace

int main()
{
    check_bytes();
    check_functions();
    check_design();
    std::printf("%d passed, %d failed\n", passes, failures);
    return failures == 0 && passes > 0 ? 0 : 1;
}
