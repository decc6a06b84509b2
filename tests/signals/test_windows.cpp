// SPDX-License-Identifier: GPL-3.0-or-later
#include "signals/windows.h"

#include "signals/correlation.h"
#include "tests/signals/error_text.h"
#include "tests/signals/near.h"
#include "tests/signals/noise.h"

#include <numeric>

#include <gmock/gmock.h>

namespace
{

using namespace signals;
using testing::HasSubstr;

std::vector<Eigen::Index> all_rows(Eigen::Index count)
{
    std::vector<Eigen::Index> rows(count);
    std::iota(rows.begin(), rows.end(), 0);
    return rows;
}

TEST(Windows, FullOnesOnly)
{
    // 29.9 s are 15 volumes of 2 s, 4.9 s are 2.
    const std::vector<Window> found = windows(40, 3, 2, 29.9, 4.9);
    ASSERT_EQ(found.size(), 12U);
    EXPECT_EQ(found.front().first, 3);
    EXPECT_EQ(found.front().length, 15);
    EXPECT_EQ(found[1].first, 5);
    EXPECT_EQ(found.back().first, 25) << "to volume 39, the last";
    EXPECT_EQ(windows(40, 3, 2, 74, 2).size(), 1U);
}

TEST(Windows, StepIsAtLeastAVolume)
{
    EXPECT_EQ(windows(20, 0, 2, 20, 0).size(), 11U);
    EXPECT_EQ(windows(20, 0, 2, 20, 0.1).size(), 11U);
    EXPECT_EQ(windows(20, 0, 2, 20, 1000).size(), 1U);
}

TEST(Windows, ThatDoNotFit)
{
    EXPECT_THAT(error_text<Error>([] { windows(40, 3, 2, 76, 2); }),
                HasSubstr("window of 38 volumes does not fit into 37 volumes"));
    EXPECT_THAT(error_text<Error>([] { windows(5, 9, 2, 76, 2); }), HasSubstr("0 volumes"));
    EXPECT_THAT(error_text<UsageError>([] { windows(40, 0, 2, 2.9, 2); }),
                HasSubstr("window of 2.9 s has 1 volumes of 2 s: expected 2 or more"));
    for (const auto &[tr, window, step] :
         {std::tuple(0.0, 20.0, 2.0), std::tuple(2.0, -20.0, 2.0), std::tuple(2.0, 20.0, -1.0),
          std::tuple(double(NAN), 20.0, 2.0), std::tuple(2.0, double(NAN), 2.0),
          std::tuple(2.0, double(INFINITY), 2.0), std::tuple(2.0, 20.0, double(NAN)),
          std::tuple(2.0, 20.0, double(INFINITY))}) {
        EXPECT_THAT(
            error_text<UsageError>([&, t = tr, w = window, s = step] { windows(40, 0, t, w, s); }),
            HasSubstr("expected lengths above 0"));
    }
}

TEST(WindowWeights, Tapers)
{
    const Window window{2, 4};
    const auto weights = [&](Taper taper) { return window_weights(window, taper, all_rows(8)); };
    Eigen::ArrayXd wanted(8);
    wanted << 0, 0, 0.25, 0.25, 0.25, 0.25, 0, 0;
    EXPECT_TRUE(near(weights(Taper::none), wanted, 1e-16));
    const double outer = std::pow(std::sin(M_PI / 8), 2);
    const double inner = std::pow(std::sin(3 * M_PI / 8), 2);
    wanted << 0, 0, outer, inner, inner, outer, 0, 0;
    EXPECT_TRUE(near(weights(Taper::hann), wanted / wanted.sum(), 1e-15));
    const double far = std::exp(-std::pow(1.5 / (4 / 6.0), 2) / 2);
    const double close = std::exp(-std::pow(0.5 / (4 / 6.0), 2) / 2);
    wanted << 0, 0, far, close, close, far, 0, 0;
    EXPECT_TRUE(near(weights(Taper::gauss), wanted / wanted.sum(), 1e-15));
}

TEST(WindowWeights, OfKeptVolumesAlone)
{
    const Eigen::ArrayXd found = window_weights({2, 4}, Taper::none, {0, 3, 5, 6});
    Eigen::ArrayXd wanted(4);
    wanted << 0, 0.5, 0.5, 0;
    EXPECT_TRUE(near(found, wanted, 0));
    EXPECT_TRUE(near(window_weights({2, 4}, Taper::hann, {0, 1, 9}), Eigen::ArrayXd::Zero(3), 0));
    EXPECT_EQ(window_weights({2, 4}, Taper::hann, {}).size(), 0);
}

TEST(WindowWeights, EffectiveVolumes)
{
    EXPECT_NEAR(effective_volumes(window_weights({0, 30}, Taper::none, all_rows(40))), 30, 1e-12);
    EXPECT_NEAR(effective_volumes(window_weights({0, 30}, Taper::hann, all_rows(40))), 20, 1e-12);
    EXPECT_EQ(effective_volumes(Eigen::ArrayXd::Zero(5)), 0);
}

TEST(WindowWeights, FilledWindows)
{
    // Half of 24 is 12; 10 are needed in any case.
    EXPECT_TRUE(is_filled({0, 24}, all_rows(12)));
    EXPECT_FALSE(is_filled({0, 24}, all_rows(11)));
    EXPECT_TRUE(is_filled({0, 12}, all_rows(10)));
    EXPECT_FALSE(is_filled({0, 12}, all_rows(9)));
    EXPECT_EQ(kept_in({5, 10}, {4, 5, 9, 14, 15}), 3);
}

TEST(WeightedCovariance, OfEqualWeightsIsThatOfTheWindow)
{
    const Eigen::MatrixXd series = Noise(70).white(50, 4).array() + 7;
    const Eigen::ArrayXd weights = window_weights({10, 20}, Taper::none, all_rows(50));
    EXPECT_TRUE(near(weighted_covariance(series, weights),
                     covariance(series.middleRows(10, 20), 20), 1e-13));
    EXPECT_TRUE(near(correlation_of(weighted_covariance(series, weights)),
                     pearson(series.middleRows(10, 20)), 1e-13));
}

TEST(WeightedCovariance, BySums)
{
    Eigen::MatrixXd series(3, 2);
    series << 1, 5, 2, 3, 4, 4;
    Eigen::ArrayXd weights(3);
    weights << 0.5, 0.2, 0.3;
    const double mean_x = 0.5 + 0.4 + 1.2;
    const double mean_y = 2.5 + 0.6 + 1.2;
    const double wanted = 0.5 * (1 - mean_x) * (5 - mean_y) + 0.2 * (2 - mean_x) * (3 - mean_y) +
                          0.3 * (4 - mean_x) * (4 - mean_y);
    EXPECT_NEAR(weighted_covariance(series, weights)(0, 1), wanted, 1e-15);
    EXPECT_THAT(error_text<Error>([&] { weighted_covariance(series, weights.head(2)); }),
                HasSubstr("3 rows with 2 weights"));
}

} // namespace
