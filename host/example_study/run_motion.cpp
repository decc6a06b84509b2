// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/example_study/run_motion.h"

#include <cmath>

namespace corvane::example_study
{

namespace
{

constexpr double headRadius = 50; ///< mm by which a rad turns the border of the head

Eigen::MatrixXd rounded(const Eigen::MatrixXd &values, double steps)
{
    return ((values * steps).array() + 0.5).floor() / steps;
}

int jerkCount(const Run &run, Draws &draws)
{
    const double restlessness = run.of.restlessness;
    return run.isRestless() ? 30 : static_cast<int>(draws.between(0, 1.5 + 1.5 * restlessness));
}

} // namespace

Eigen::MatrixXd motionOf(const Run &run)
{
    Eigen::MatrixXd motion(volumeCount, 6);
    for (int parameter = 0; parameter < 6; ++parameter) {
        Draws draws(Draw::Motion, run.owner(), std::uint32_t(parameter));
        motion.col(parameter) =
            run.of.restlessness * (0.12 * draws.persistentSeries(volumeCount, 0.985) +
                                   0.012 * draws.persistentSeries(volumeCount, 0));
    }
    Draws draws(Draw::Jerks, run.owner());
    const int jerks = jerkCount(run, draws);
    for (int jerk = 0; jerk < jerks; ++jerk) {
        const auto volume = static_cast<int>(draws.between(6, volumeCount - 2));
        const bool stays = draws.uniform() < 0.3;
        for (int parameter = 0; parameter < 6; ++parameter) {
            const double way = (stays ? 0.15 : 0.3) * draws.normal();
            motion.col(parameter).segment(volume, stays ? volumeCount - volume : 1).array() += way;
        }
    }
    motion.leftCols(3) = rounded(motion.leftCols(3), 1e5);
    motion.rightCols(3) = rounded(motion.rightCols(3) / headRadius, 1e6);
    return motion;
}

} // namespace corvane::example_study
