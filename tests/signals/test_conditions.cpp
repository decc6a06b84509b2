// SPDX-License-Identifier: GPL-3.0-or-later
#include "signals/conditions.h"
#include "tests/signals/error_text.h"
#include "tests/signals/near.h"
#include "tests/signals/noise.h"

#include <gmock/gmock.h>

namespace
{

using namespace signals;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

std::pair<Eigen::Index, Eigen::Index> found(double onset, double duration, double delay = 0,
                                            double tr = 2, Eigen::Index volumes = 100)
{
    const Window window = event_volumes({onset, duration}, delay, tr, volumes);
    return {window.first, window.length};
}

using Range = std::pair<Eigen::Index, Eigen::Index>;

TEST(EventVolumes, FromFloorToCeiling)
{
    EXPECT_EQ(found(10, 20), Range(5, 10));
    EXPECT_EQ(found(11, 20), Range(5, 11));
    EXPECT_EQ(found(10, 20, 5), Range(7, 11));
    EXPECT_EQ(found(10, 20, -5), Range(2, 11));
}

TEST(EventVolumes, BordersAreMetWithinAThousandthOfAVolume)
{
    // 0.72 as a float is 0.72000002861..: each onset on a border would land a volume early.
    const double tr = double(0.72F);
    for (int volume = 0; volume < 90; ++volume) {
        EXPECT_EQ(found(0.72 * volume, 0.72 * 5, 0, tr), Range(volume, 5)) << volume;
    }
    EXPECT_EQ(found(10 - 1e-2, 20), Range(4, 11)) << "but not further";
}

TEST(EventVolumes, AtLeastOneAndOnlyThoseOfTheRun)
{
    EXPECT_EQ(found(10, 0), Range(5, 1));
    EXPECT_EQ(found(11, 0), Range(5, 1));
    EXPECT_EQ(found(190, 60), Range(95, 5));
    EXPECT_EQ(found(300, 60).second, 0);
    EXPECT_EQ(found(-10, 16), Range(0, 3));
    EXPECT_EQ(found(-10, 4).second, 0);
}

TEST(EventVolumes, TimesThatAreNone)
{
    EXPECT_THAT(error_text<Error>([] { found(10, -1); }),
                HasSubstr("event of -1 s: expected 0 or more"));
    EXPECT_THAT(error_text<UsageError>([] { found(10, 1, 0, 0); }),
                HasSubstr("repetition time above 0"));
    EXPECT_THAT(error_text<UsageError>([] { found(NAN, 1); }), HasSubstr("event at n/a s"));
    EXPECT_THAT(error_text<UsageError>([] { found(1, INFINITY); }), HasSubstr("of inf s"));
}

// Rows 0 to 6 are the volumes 2, 3, 5, 6, 7, 10, 11.
const std::vector<Eigen::Index> rows = {2, 3, 5, 6, 7, 10, 11};

TEST(Conditions, KeptRowsOfAllIntervalsEachOnce)
{
    EXPECT_THAT(rows_in({{3, 3}, {5, 2}, {11, 9}}, rows), ElementsAre(1, 2, 3, 6));
    EXPECT_THAT(rows_in({{8, 2}}, rows), IsEmpty());
    EXPECT_THAT(rows_in({}, rows), IsEmpty());
    const Eigen::MatrixXd series = Noise(71).white(7, 2);
    const Eigen::MatrixXd part = condition_series(series, {{10, 2}, {2, 1}}, rows);
    ASSERT_EQ(part.rows(), 3);
    EXPECT_EQ(part.row(0), series.row(0)) << "in the order of the file";
    EXPECT_EQ(part.row(2), series.row(6));
}

TEST(Conditions, CentredByInterval)
{
    Eigen::MatrixXd series(7, 1);
    series << 1, 3, 100, 102, 107, 50, 70;
    Eigen::VectorXd wanted(7);
    wanted << -1, 1, -3, -1, 4, -10, 10;
    // Given out of order; between them stands none.
    EXPECT_TRUE(near(centred_condition_series(series, {{10, 2}, {2, 2}, {8, 1}, {5, 3}}, rows),
                     wanted, 1e-14));
    // 6 and 7 stand in two: they count to the earlier interval.
    wanted.conservativeResize(4);
    wanted << -3, -1, 4, 0;
    EXPECT_TRUE(near(centred_condition_series(series, {{6, 5}, {5, 3}}, rows), wanted, 1e-14));
}

} // namespace
