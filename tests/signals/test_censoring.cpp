// SPDX-License-Identifier: GPL-3.0-or-later
#include "signals/censoring.h"
#include "tests/signals/error_text.h"

#include <gmock/gmock.h>

namespace
{

using namespace signals;
using testing::ElementsAre;
using testing::HasSubstr;

/// FD of 0.1 mm but for the volumes named.
Eigen::ArrayXd still_but(Eigen::Index volumes, std::initializer_list<Eigen::Index> moved)
{
    Eigen::ArrayXd fd = Eigen::ArrayXd::Constant(volumes, 0.1);
    fd[0] = NAN;
    for (const Eigen::Index volume : moved) {
        fd[volume] = 0.6;
    }
    return fd;
}

std::vector<Eigen::Index> found(const Eigen::ArrayXd &fd, const Thresholds &thresholds)
{
    return positions(outliers(fd, {}, thresholds));
}

TEST(Censoring, ThresholdsAreStrictAndNaNNeverExceeds)
{
    Eigen::ArrayXd fd(4);
    fd << NAN, 0.5, 0.5000001, 0.4;
    Eigen::ArrayXd dvars(4);
    dvars << NAN, 1.5, 1.4, 1.6;
    EXPECT_THAT(positions(outliers(fd, dvars, {0.5, 0, 0})), ElementsAre(2));
    EXPECT_THAT(positions(outliers(fd, dvars, {0, 1.5, 0})), ElementsAre(3));
    EXPECT_THAT(positions(outliers(fd, dvars, {0.5, 1.5, 0})), ElementsAre(2, 3));
    EXPECT_THAT(positions(outliers({}, dvars, {0.5, 1.5, 0})), ElementsAre(3));
}

TEST(Censoring, ZeroIsOff)
{
    EXPECT_THAT(found(still_but(20, {3, 10}), {0, 0, 5}), ElementsAre());
    EXPECT_THAT(found(still_but(20, {3, 10}), {0.5, 0, 0}), ElementsAre(3, 10));
}

TEST(Censoring, ShortSegmentsGoToo)
{
    // Before: 6 volumes. Between: 4, then 5. Behind: 3.
    EXPECT_THAT(found(still_but(21, {6, 11, 17}), {0.5, 0, 5}),
                ElementsAre(6, 7, 8, 9, 10, 11, 17, 18, 19, 20));
    EXPECT_THAT(found(still_but(10, {4}), {0.5, 0, 5}), ElementsAre(0, 1, 2, 3, 4))
        << "four before, five behind";
    EXPECT_THAT(found(still_but(9, {0, 8}), {0.5, 0, 5}), ElementsAre(0, 8));
}

TEST(Censoring, WithoutAnOutlierNothingIsShort)
{
    EXPECT_THAT(found(still_but(4, {}), {0.5, 0, 5}), ElementsAre());
}

TEST(Censoring, AllMayGo)
{
    EXPECT_EQ(found(still_but(8, {4}), {0.5, 0, 5}).size(), 8U);
    EXPECT_EQ(found(Eigen::ArrayXd::Constant(8, 3), {0.5, 0, 5}).size(), 8U);
}

TEST(Censoring, NothingToLookAt)
{
    EXPECT_EQ(outliers({}, {}, {0.5, 1.5, 5}).size(), 0);
}

TEST(Censoring, NumbersThatAreNone)
{
    const Eigen::ArrayXd fd = still_but(5, {});
    const auto text = [&](const Thresholds &thresholds) {
        return error_text<UsageError>([&] { outliers(fd, {}, thresholds); });
    };
    EXPECT_THAT(text({-0.5, 0, 5}), HasSubstr("FD threshold of -0.5 mm: expected 0 or more"));
    EXPECT_THAT(text({NAN, 0, 5}), HasSubstr("FD threshold of n/a mm"));
    EXPECT_THAT(text({0, -1, 5}), HasSubstr("DVARS of -1: expected 0 or more"));
    EXPECT_THAT(text({0, 0, -2}), HasSubstr("segment of -2 volumes: expected 0 or more"));
    EXPECT_THAT(error_text<Error>([&] { outliers(fd, Eigen::ArrayXd::Zero(4), {}); }),
                HasSubstr("FD of 5 volumes, standardised DVARS of 4 volumes"));
}

} // namespace
