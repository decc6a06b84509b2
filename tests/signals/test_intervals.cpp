// SPDX-License-Identifier: GPL-3.0-or-later
#include "signals/intervals.h"

#include "signals/cleaning.h"
#include "tests/signals/error_text.h"
#include "tests/signals/near.h"
#include "tests/signals/noise.h"

#include <numeric>

#include <gmock/gmock.h>

namespace
{

using namespace signals;
using testing::HasSubstr;

TEST(Interval, OfOneCorrelation)
{
    const CorrelationInterval found = correlation_interval(0.5, 27);
    EXPECT_NEAR(found.z, 0.5493061443340549, 1e-15);
    EXPECT_EQ(found.standard_error, 0.2);
    EXPECT_NEAR(found.low, std::tanh(0.5493061443340549 - 0.3919928), 1e-15);
    EXPECT_NEAR(found.high, std::tanh(0.5493061443340549 + 0.3919928), 1e-15);
    EXPECT_EQ(found.t_degrees, 26);
    EXPECT_NEAR(found.t, 0.5 * std::sqrt(26 / 0.75), 1e-14);
}

TEST(Interval, OfPlainCorrelationIsTheTextbooks)
{
    // n pairs, no regressors: the mean alone is taken, nu = n - 1.
    const double n = 30;
    const CorrelationInterval found = correlation_interval(0.3, n - 1);
    EXPECT_NEAR(found.standard_error, 1 / std::sqrt(n - 3), 1e-15);
    EXPECT_EQ(found.t_degrees, n - 2);
}

TEST(Interval, AtTheEnds)
{
    for (const double r : {-1.0, 1.0}) {
        const CorrelationInterval found = correlation_interval(r, 50);
        EXPECT_EQ(found.low, r);
        EXPECT_EQ(found.high, r);
        EXPECT_TRUE(std::isinf(found.t));
    }
    EXPECT_TRUE(std::isnan(correlation_interval(NAN, 50).low));
    EXPECT_EQ(correlation_interval(0, 50).t, 0);
}

TEST(Interval, TooFewDegreesOfFreedom)
{
    EXPECT_NO_THROW(correlation_interval(0.5, 3));
    for (const double nu : {2.999, 0.0, -1.0, double(NAN)}) {
        EXPECT_THAT(error_text<Error>([&] { correlation_interval(0.5, nu); }),
                    HasSubstr("degrees of freedom: expected at least 3"));
    }
    EXPECT_THAT(error_text<Error>([] { correlation_interval(1.1, 9); }),
                HasSubstr("correlation of 1.1: expected -1 to 1"));
}

TEST(Interval, OfAPart)
{
    EXPECT_EQ(degrees_of_part(150, 40, 200), 30);
}

/// By the sums of the definition, pair by pair.
double serial_degrees_by_sums(const Eigen::MatrixXd &series, const std::vector<Eigen::Index> &rows,
                              double nu)
{
    const Eigen::Index kept = series.rows();
    const Eigen::ArrayXd x = series.col(0).array() - series.col(0).mean();
    const Eigen::ArrayXd y = series.col(1).array() - series.col(1).mean();
    double sum = 0;
    for (Eigen::Index lag = 1; lag <= kept / 5; ++lag) {
        double xx = 0;
        double yy = 0;
        double pairs = 0;
        for (Eigen::Index i = 0; i < kept; ++i) {
            for (Eigen::Index j = i + 1; j < kept; ++j) {
                if (rows[j] - rows[i] == lag) {
                    xx += x[i] * x[j];
                    yy += y[i] * y[j];
                    ++pairs;
                }
            }
        }
        if (pairs > 0) {
            sum += xx / x.square().sum() * yy / y.square().sum() * double(kept) / pairs;
        }
    }
    return nu / std::max(1.0, 1 + 2 * sum);
}

TEST(SerialDegrees, BySums)
{
    const Eigen::MatrixXd series = Noise(41).serial(53, 2, 0.7).array() + 10;
    std::vector<Eigen::Index> rows(53);
    std::iota(rows.begin(), rows.end(), 7);
    const Eigen::MatrixXd found = serial_degrees(series, rows, 40);
    EXPECT_NEAR(found(0, 1), serial_degrees_by_sums(series, rows, 40), 1e-10);
    EXPECT_EQ(found(0, 1), found(1, 0));
    EXPECT_LT(found(0, 1), 35);
}

TEST(SerialDegrees, DistancesAreThoseOfTheFile)
{
    // Gaps of all lengths, and one longer than any distance that counts.
    std::vector<Eigen::Index> rows;
    Noise gaps(42);
    for (Eigen::Index volume = 0; volume < 200; ++volume) {
        if (gaps.uniform() < 0.4 && (volume < 60 || volume > 120)) {
            rows.push_back(volume);
        }
    }
    const Eigen::MatrixXd series = gaps.serial(200, 2, 0.9)(rows, Eigen::all);
    std::vector<Eigen::Index> packed(rows.size());
    std::iota(packed.begin(), packed.end(), 0);
    const double found = serial_degrees(series, rows, 40)(0, 1);
    EXPECT_NEAR(found, serial_degrees_by_sums(series, rows, 40), 1e-10);
    EXPECT_GT(std::abs(found - serial_degrees(series, packed, 40)(0, 1)), 1);
    EXPECT_NEAR(serial_degrees(series, rows, 80)(0, 1), 2 * found, 1e-10);
}

TEST(SerialDegrees, DistancesWithoutAPairCountForNothing)
{
    // Every other volume: what is two volumes apart is one apart among the kept, and half of the
    // distances are not there.
    const Eigen::MatrixXd series = Noise(47).serial(50, 2, 0.8);
    std::vector<Eigen::Index> odd(50);
    for (Eigen::Index i = 0; i < 50; ++i) {
        odd[i] = 2 * i + 1;
    }
    const Eigen::MatrixXd x = series.rowwise() - series.colwise().mean();
    double sum = 0;
    for (Eigen::Index lag = 1; lag <= 5; ++lag) { // up to 10 = 50 / 5 volumes of the file
        const Eigen::RowVectorXd a = x.topRows(50 - lag)
                                         .cwiseProduct(x.bottomRows(50 - lag))
                                         .colwise()
                                         .sum()
                                         .cwiseQuotient(x.colwise().squaredNorm()) *
                                     std::sqrt(50.0 / double(50 - lag));
        sum += a[0] * a[1];
    }
    EXPECT_GT(sum, 0.5);
    EXPECT_NEAR(serial_degrees(series, odd, 40)(0, 1), 40 / (1 + 2 * sum), 1e-10);
}

TEST(SerialDegrees, NeverMoreThanThereAre)
{
    // Series that swing against themselves gain nothing.
    const Eigen::MatrixXd series = Noise(43).serial(100, 1, -0.8);
    Eigen::MatrixXd both(100, 2);
    both << series, Noise(44).serial(100, 1, 0.8);
    std::vector<Eigen::Index> rows(100);
    std::iota(rows.begin(), rows.end(), 0);
    const Eigen::MatrixXd found = serial_degrees(both, rows, 90);
    EXPECT_LE(found.maxCoeff(), 90);
    EXPECT_EQ(found(0, 1), 90);
    EXPECT_LT(found(0, 0), 60);
}

TEST(SerialDegrees, SeriesWithoutVariance)
{
    Eigen::MatrixXd series = Noise(45).white(20, 3);
    series.col(1).setConstant(0.1);
    std::vector<Eigen::Index> rows(20);
    std::iota(rows.begin(), rows.end(), 0);
    const Eigen::MatrixXd found = serial_degrees(series, rows, 15);
    EXPECT_TRUE(std::isnan(found(0, 1)));
    EXPECT_TRUE(std::isnan(found(1, 2)));
    EXPECT_FALSE(std::isnan(found(0, 2)));
    EXPECT_TRUE(serial_degrees(Eigen::MatrixXd(0, 2), {}, 15).array().isNaN().all());
    EXPECT_THAT(error_text<Error>([&] {
                    serial_degrees(series, {1, 2}, 15);
                }),
                HasSubstr("series of 20 rows with 2 volume numbers"));
}

// Coverage: how often the interval holds the true value, of 10,000 pairs.

struct Pairs {
    double phi;      ///< correlation from volume to volume
    double rho;      ///< true correlation of the pair
    bool regression; ///< 24 regressors, trend and drift are in the series, and are taken out
    double censored; ///< share of volumes left out at random
};

struct Coverage {
    double plain = 0;
    double serial = 0;
};

Coverage coverage(const Pairs &pairs)
{
    constexpr Eigen::Index volumes = 200;
    constexpr Eigen::Index count = 10000;
    Noise noise(46);
    const Eigen::MatrixXd x = noise.serial(volumes, count, pairs.phi);
    const Eigen::MatrixXd other = noise.serial(volumes, count, pairs.phi);
    Eigen::MatrixXd series(volumes, 2 * count);
    series << x, pairs.rho * x + std::sqrt(1 - pairs.rho * pairs.rho) * other;

    Settings settings;
    Regressors regressors;
    regressors.filter_only = !pairs.regression;
    if (pairs.regression) {
        settings.high_pass = 0.008;
        regressors.values = noise.serial(volumes, 24, pairs.phi);
        regressors.names.assign(24, "r");
        series += regressors.values * noise.white(24, 2 * count);
    }
    Volumes kept = Volumes::all_of(volumes);
    for (Eigen::Index i = 0; i < volumes; ++i) {
        kept.censored[i] = noise.uniform() < pairs.censored;
    }
    const Design design = make_design(regressors, kept, 2, settings);
    const Eigen::MatrixXd cleaned = clean(series, design).series;

    Coverage found;
    for (Eigen::Index i = 0; i < count; ++i) {
        Eigen::MatrixXd pair(cleaned.rows(), 2);
        pair << cleaned.col(i), cleaned.col(count + i);
        pair = zscored(pair);
        const double r = pair.col(0).dot(pair.col(1)) / double(pair.rows() - 1);
        const double nu = design.ledger.degrees;
        const auto holds = [&](double degrees) {
            const CorrelationInterval interval = correlation_interval(r, degrees);
            return interval.low <= pairs.rho && pairs.rho <= interval.high;
        };
        found.plain += holds(nu) ? 1.0 / count : 0;
        found.serial += holds(serial_degrees(pair, design.rows, nu)(0, 1)) ? 1.0 / count : 0;
    }
    return found;
}

/// For the table of the guide: --gtest_output=xml:FILE writes it.
std::string row(const Pairs &pairs, const Coverage &found)
{
    return "phi " + std::to_string(pairs.phi) + ", rho " + std::to_string(pairs.rho) +
           (pairs.regression ? ", after regression" : ", no regression") + ", censored " +
           std::to_string(pairs.censored) + ": plain " + std::to_string(found.plain) + ", serial " +
           std::to_string(found.serial);
}

class CoverageOfInterval : public testing::TestWithParam<Pairs>
{
};

TEST_P(CoverageOfInterval, IsThatOfItsName)
{
    const Pairs pairs = GetParam();
    const Coverage found = coverage(pairs);
    RecordProperty("coverage", row(pairs, found));
    SCOPED_TRACE(row(pairs, found));
    if (pairs.phi == 0) {
        // Four standard errors of 10,000 trials at 0.95 are 0.009.
        EXPECT_NEAR(found.plain, 0.95, 0.009);
        EXPECT_GE(found.serial, found.plain);
        EXPECT_LE(found.serial, 0.975);
    } else {
        EXPECT_LT(found.plain, 0.9) << "volumes that are not independent are taken as such";
        EXPECT_GE(found.serial, pairs.regression ? 0.91 : 0.94);
        EXPECT_LE(found.serial, 0.97);
    }
}

INSTANTIATE_TEST_SUITE_P(Simulated, CoverageOfInterval,
                         testing::Values(Pairs{0, 0, false, 0}, Pairs{0, 0, true, 0},
                                         Pairs{0, 0.5, false, 0}, Pairs{0, 0.5, true, 0},
                                         Pairs{0.6, 0, false, 0}, Pairs{0.6, 0, true, 0},
                                         Pairs{0.6, 0.5, false, 0}, Pairs{0.6, 0.5, true, 0},
                                         Pairs{0.6, 0.5, false, 0.3}));

} // namespace
