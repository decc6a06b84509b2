// SPDX-License-Identifier: GPL-3.0-or-later
#include "signals/design.h"
#include "signals/drift.h"
#include "tests/signals/error_text.h"
#include "tests/signals/near.h"
#include "tests/signals/noise.h"

#include <gmock/gmock.h>

namespace
{

using namespace signals;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr double tr = 2;
constexpr Order all_orders[] = {Order::joint, Order::cosine, Order::butterworth,
                                Order::bandpass_pad};

Regressors noise_regressors(Eigen::Index volumes, Eigen::Index count)
{
    Regressors regressors;
    regressors.values = Noise(20).white(volumes, count);
    for (Eigen::Index i = 0; i < count; ++i) {
        regressors.names.push_back("r" + std::to_string(i));
    }
    return regressors;
}

void append(Regressors &regressors, const std::string &name, const Eigen::VectorXd &values)
{
    regressors.names.push_back(name);
    regressors.values.conservativeResize(values.size(), regressors.values.cols() + 1);
    regressors.values.rightCols(1) = values;
}

/// With the cosines of a table at 0.008 Hz.
Regressors with_cosines(Eigen::Index volumes, Eigen::Index others)
{
    Regressors regressors = noise_regressors(volumes, others);
    const Eigen::MatrixXd drift = cosines(volumes, cosines_below(volumes, tr, 0.008));
    for (Eigen::Index i = 0; i < drift.cols(); ++i) {
        append(regressors, "cosine0" + std::to_string(i), drift.col(i));
    }
    return regressors;
}

Volumes kept_but(Eigen::Index volumes, std::initializer_list<Eigen::Index> censored)
{
    Volumes result = Volumes::all_of(volumes);
    for (const Eigen::Index volume : censored) {
        result.censored[volume] = true;
    }
    return result;
}

Settings with_order(Order order, std::optional<double> high_pass = {},
                    std::optional<double> low_pass = {})
{
    return {order, high_pass, low_pass, true, Standardize::none};
}

Design design(const Regressors &regressors, const Settings &settings, Eigen::Index volumes)
{
    return make_design(regressors, Volumes::all_of(volumes), tr, settings);
}

// What is in the fit.

TEST(DesignJoint, Columns)
{
    const Design found = design(with_cosines(150, 2), with_order(Order::joint), 150);
    EXPECT_THAT(found.names, ElementsAre("intercept", "trend", "r0", "r1", "cosine00", "cosine01",
                                         "cosine02", "cosine03"));
    EXPECT_THAT(found.notes, IsEmpty());
    EXPECT_EQ(found.columns.rows(), 150);
    EXPECT_TRUE(near(found.columns.colwise().norm(), Eigen::RowVectorXd::Ones(8), 1e-14));
    EXPECT_TRUE(
        near(found.columns.rightCols(7).colwise().sum(), Eigen::RowVectorXd::Zero(7), 1e-13));
}

TEST(DesignJoint, TrendRunsOverTheVolumesOfTheFile)
{
    const Design found = make_design({}, kept_but(10, {1, 2, 3, 4}), tr, with_order(Order::joint));
    const Eigen::VectorXd steps = found.columns.col(1).tail(5) - found.columns.col(1).head(5);
    EXPECT_NEAR(steps[0] / steps[1], 5, 1e-12);
}

TEST(DesignJoint, HighPassTakesThePlaceOfTheTablesCosines)
{
    const Design found = design(with_cosines(150, 1), with_order(Order::joint, 0.006), 150);
    EXPECT_THAT(found.names, ElementsAre("intercept", "trend", "own cosine 1", "own cosine 2",
                                         "own cosine 3", "r0"));
    EXPECT_THAT(found.notes, ElementsAre(HasSubstr("cosines of the table are left out")));
    // Those of a low-pass join the table's.
    const Design low = design(with_cosines(20, 0), with_order(Order::joint, {}, 0.22), 20);
    EXPECT_THAT(low.names, ElementsAre("intercept", "trend", "own cosine 18", "own cosine 19"));
}

TEST(DesignJoint, BandTakesTheCosinesOutside)
{
    // Cosine k of 100 volumes has k/400 Hz: 4 lie at or below 0.01 Hz, 67 above 0.08 Hz.
    const Design found = design({}, with_order(Order::joint, 0.01, 0.08), 100);
    EXPECT_EQ(found.ledger.rank, 2 + 4 + 67);
    EXPECT_FALSE(found.ledger.about);
    EXPECT_THAT(found.names, Contains("own cosine 4"));
    EXPECT_THAT(found.names, Not(Contains("own cosine 5")));
    EXPECT_THAT(found.names, Not(Contains("own cosine 32")));
    EXPECT_THAT(found.names, Contains("own cosine 33"));
}

TEST(DesignJoint, CosinesAreThoseOfAllVolumes)
{
    const Volumes volumes = kept_but(60, {0, 1, 30, 31, 32});
    const Design found = make_design({}, volumes, tr, with_order(Order::joint, 0.01));
    const Eigen::VectorXd of_file = cosines(60, {2})(found.rows, 0);
    const Eigen::VectorXd centred = of_file.array() - of_file.mean();
    EXPECT_TRUE(near(found.columns.col(3), centred.normalized(), 1e-14));
}

TEST(DesignJoint, ConstantAndDependentColumnsAreNamed)
{
    Regressors regressors = noise_regressors(50, 2);
    append(regressors, "flat", Eigen::VectorXd::Constant(50, 0.1));
    append(regressors, "sum", regressors.values.col(0) + 3 * regressors.values.col(1));
    // Constant on the kept volumes alone.
    append(regressors, "spike", Eigen::VectorXd::Unit(50, 7));
    const Design found = make_design(regressors, kept_but(50, {7}), tr, with_order(Order::joint));
    EXPECT_EQ(found.ledger.rank, 4) << "intercept, trend and two";
    EXPECT_THAT(found.notes,
                ElementsAre(HasSubstr("flat is constant"), HasSubstr("spike is constant"),
                            HasSubstr("combination of others")));
    EXPECT_EQ(found.ledger.degrees, 45);
}

TEST(DesignJoint, ScaleOfARegressorIsOfNoMatter)
{
    Regressors regressors = noise_regressors(60, 3);
    const Design plain = design(regressors, with_order(Order::joint), 60);
    regressors.values.col(0) *= 1e9;
    regressors.values.col(1) = 1e-9 * regressors.values.col(1).array() + 1e-7;
    const Design scaled = design(regressors, with_order(Order::joint), 60);
    EXPECT_EQ(scaled.ledger.rank, 5);
    EXPECT_TRUE(near(scaled.basis.columns * scaled.basis.columns.transpose(),
                     plain.basis.columns * plain.basis.columns.transpose(), 1e-10));
}

TEST(DesignCosine, DefaultEdge)
{
    const auto own = [](const Regressors &regressors, std::optional<double> high_pass) {
        const Design found = design(regressors, with_order(Order::cosine, high_pass), 150);
        return std::count_if(found.names.begin(), found.names.end(),
                             [](const std::string &name) { return name.rfind("own", 0) == 0; });
    };
    EXPECT_EQ(own(noise_regressors(150, 2), {}), 4);
    EXPECT_EQ(own(with_cosines(150, 2), {}), 0) << "the table has its own";
    EXPECT_EQ(own(noise_regressors(150, 2), 0.0), 0) << "0 is none";
    EXPECT_EQ(own(noise_regressors(150, 2), 0.02), 12);
    Regressors none;
    none.filter_only = true;
    EXPECT_EQ(own(none, {}), 0);
    EXPECT_EQ(own(none, 0.02), 12) << "filters if asked";
}

TEST(DesignCosine, OwnCosinesAreLeftOutIfOneResemblesARegressor)
{
    Regressors regressors = noise_regressors(150, 2);
    append(regressors, "drift", cosines(150, {2}) + 0.01 * Noise(21).white(150, 1));
    const Design found = design(regressors, with_order(Order::cosine), 150);
    EXPECT_THAT(found.names, ElementsAre("r0", "r1", "drift"));
    EXPECT_THAT(found.notes, ElementsAre(HasSubstr("correlates above 0.9")));

    // The sign counts: what runs against a cosine does not keep it out.
    regressors.values.col(2) *= -1;
    EXPECT_EQ(design(regressors, with_order(Order::cosine), 150).names.size(), 7U);
    // Nor does what does not change.
    regressors.values.col(2).setConstant(3);
    EXPECT_EQ(design(regressors, with_order(Order::cosine), 150).names.size(), 7U);
}

TEST(DesignCosine, ARegressorResemblesACosineAboveACorrelationOfPointNine)
{
    for (const double correlation : {0.89, 0.91}) {
        Regressors regressors = noise_regressors(150, 2);
        append(regressors, "drift",
               correlation * cosines(150, {2}) +
                   std::sqrt(1 - correlation * correlation) * cosines(150, {100}));
        const Design found = design(regressors, with_order(Order::cosine), 150);
        EXPECT_EQ(found.names.size(), correlation > 0.9 ? 3U : 7U) << correlation;
    }
}

TEST(DesignCosine, RankAndDegrees)
{
    Settings settings = with_order(Order::cosine);
    EXPECT_EQ(design(noise_regressors(150, 3), settings, 150).ledger.rank, 2 + 3 + 4);
    settings.detrend = false;
    const Design found = design(noise_regressors(150, 3), settings, 150);
    EXPECT_EQ(found.ledger.rank, 1 + 3 + 4);
    EXPECT_EQ(found.ledger.degrees, 142);
    EXPECT_FALSE(found.ledger.about);
}

TEST(DesignFilters, DegreesAreThoseOfTheBandAtMost)
{
    const Design found = make_design(noise_regressors(200, 5), kept_but(200, {50, 51}), tr,
                                     with_order(Order::butterworth, 0.01, 0.08));
    EXPECT_EQ(found.ledger.rank, 7);
    EXPECT_NEAR(found.ledger.degrees, 2 * tr * 198 * 0.07 - 5, 1e-10);
    EXPECT_TRUE(found.ledger.about);
    // One edge is missing: from 0, or up to Nyquist.
    EXPECT_NEAR(design(noise_regressors(200, 5), with_order(Order::butterworth, {}, 0.08), 200)
                    .ledger.degrees,
                2 * tr * 200 * 0.08 - 5, 1e-10);
    EXPECT_NEAR(
        design(noise_regressors(200, 5), with_order(Order::butterworth, 0.01), 200).ledger.degrees,
        2 * tr * 200 * (0.25 - 0.01) - 5, 1e-10);
    // A low-pass that takes almost nothing: the fit has less.
    EXPECT_EQ(design(noise_regressors(200, 5), with_order(Order::butterworth, {}, 0.2499), 200)
                  .ledger.degrees,
              193);
}

TEST(DesignFilters, BandOfBandpassPadUnlessGiven)
{
    const auto band = [](std::optional<double> high_pass, std::optional<double> low_pass) {
        return design({}, with_order(Order::bandpass_pad, high_pass, low_pass), 200).band;
    };
    EXPECT_EQ(band({}, {}).high_pass, 0.01);
    EXPECT_EQ(band({}, {}).low_pass, 0.08);
    EXPECT_EQ(band(0.02, {}).high_pass, 0.02);
    EXPECT_EQ(band(0.02, {}).low_pass, 0.08);
    EXPECT_EQ(band({}, 0.0).low_pass, 0) << "0 is no edge";
}

TEST(DesignFilters, DependentRegressorsOfBandpassPadAreSaid)
{
    Regressors regressors = noise_regressors(200, 3);
    append(regressors, "twice", 2 * regressors.values.col(1));
    const Design found = design(regressors, with_order(Order::bandpass_pad), 200);
    EXPECT_EQ(found.ledger.rank, 2 + 3);
    EXPECT_THAT(found.notes, ElementsAre(HasSubstr("4 regressors have rank 3")));
}

// Edges.

TEST(DesignEdges, AtOrAboveNyquistAreLoweredAndSaid)
{
    for (const Order order : all_orders) {
        const Design found = design({}, with_order(order, 0.01, 0.3), 300);
        EXPECT_LT(found.band.low_pass, 0.25);
        EXPECT_GT(found.band.low_pass, 0.2499);
        EXPECT_THAT(found.notes, ElementsAre(HasSubstr("low-pass of 0.3 Hz is lowered to half the "
                                                       "rate of the volumes, 0.25 Hz")))
            << name(order);
    }
}

TEST(DesignEdges, ThatLeaveNoBand)
{
    const auto text = [](Order order, double high_pass, double low_pass) {
        return error_text<UsageError>(
            [&] { design({}, with_order(order, high_pass, low_pass), 300); });
    };
    for (const Order order : all_orders) {
        EXPECT_THAT(text(order, 0.08, 0.01),
                    HasSubstr("a high-pass of 0.08 Hz and a low-pass of 0.01 Hz"));
        EXPECT_THAT(text(order, 0.05, 0.05), HasSubstr("nothing passes"));
        EXPECT_THAT(text(order, 0.26, 0.3), HasSubstr("0.25 Hz, half the rate"));
        EXPECT_THAT(text(order, -0.1, 0.1), HasSubstr("edge of -0.1 Hz: expected 0 or more"));
        EXPECT_THAT(text(order, NAN, 0.1), HasSubstr("edge of n/a Hz"));
        EXPECT_THAT(text(order, 0.1, INFINITY), HasSubstr("edge of inf Hz"));
    }
}

TEST(DesignEdges, ButterworthNeedsOne)
{
    EXPECT_THAT(error_text<UsageError>([] { design({}, with_order(Order::butterworth), 300); }),
                HasSubstr("needs a high-pass or a low-pass"));
    EXPECT_THAT(
        error_text<UsageError>([] { design({}, with_order(Order::bandpass_pad, 0.0, 0.0), 300); }),
        HasSubstr("needs a high-pass or a low-pass"));
}

// Runs with too little.

TEST(DesignOfShortRuns, FilterNeedsMoreVolumesThanItsPadding)
{
    const auto text = [](Eigen::Index volumes, const Settings &settings) {
        return error_text<Error>([&] { design({}, settings, volumes); });
    };
    EXPECT_THAT(text(33, with_order(Order::butterworth, 0.01, 0.2)),
                HasSubstr("33 volumes, expected more than the 33"));
    EXPECT_THAT(text(18, with_order(Order::butterworth, {}, 0.2)),
                HasSubstr("18 volumes, expected more than the 18"));
    EXPECT_NO_THROW(design({}, with_order(Order::butterworth, 0.01, 0.2), 34));
    EXPECT_NO_THROW(design({}, with_order(Order::butterworth, {}, 0.2), 19));
    // Censored volumes at the ends are discarded before.
    EXPECT_THAT(error_text<Error>([] {
                    make_design({}, kept_but(36, {0, 1, 35}), tr,
                                with_order(Order::butterworth, 0.01, 0.2));
                }),
                HasSubstr("33 volumes, expected more than the 33"));
}

TEST(DesignOfShortRuns, PaddingOfBandpassPadIsTheRunItself)
{
    EXPECT_NO_THROW(design({}, with_order(Order::bandpass_pad, {}, 0.2), 20));
}

TEST(DesignOfShortRuns, BelowThreeDegreesOfFreedomAreRefusedWithAllNumbers)
{
    EXPECT_NO_THROW(design(noise_regressors(20, 15), with_order(Order::joint), 20));
    EXPECT_THAT(
        error_text<Refused>([] { design(noise_regressors(20, 16), with_order(Order::joint), 20); }),
        HasSubstr("2 degrees of freedom, expected at least 3 (20 volumes in the file, 0 "
                  "non-steady, 0 censored, 20 kept, 40 s; design of rank 18, 2 degrees"));
    EXPECT_THAT(error_text<Refused>(
                    [] { design(noise_regressors(20, 16), with_order(Order::cosine), 20); }),
                HasSubstr("design of rank 18"));
    // 2 tr 100 0.07 = 28 in the band.
    EXPECT_THAT(error_text<Refused>([] {
                    design(noise_regressors(100, 26), with_order(Order::bandpass_pad), 100);
                }),
                HasSubstr("2 degrees of freedom, expected at least 3"));
}

TEST(DesignOfShortRuns, AllCensored)
{
    Volumes volumes = Volumes::all_of(100);
    volumes.censored.setConstant(true);
    volumes.non_steady.head(3).setConstant(true);
    for (const Order order : all_orders) {
        EXPECT_THAT(error_text<Refused>(
                        [&] { make_design({}, volumes, tr, with_order(order, 0.01, 0.1)); }),
                    HasSubstr("0 degrees of freedom, expected at least 3 (100 volumes in the file, "
                              "3 non-steady, 97 censored, 0 kept"))
            << name(order);
    }
}

TEST(DesignOfShortRuns, NoVolumes)
{
    for (const Order order : all_orders) {
        EXPECT_THAT(error_text<Error>([&] { design({}, with_order(order, 0.01, 0.1), 0); }),
                    HasSubstr("0 volumes: expected 1 or more"));
    }
}

TEST(DesignOfShortRuns, MoreColumnsThanVolumes)
{
    EXPECT_THAT(
        error_text<Refused>([] { design(noise_regressors(10, 30), with_order(Order::joint), 10); }),
        HasSubstr("design of rank 10, 0 degrees"));
}

// Input that does not fit.

TEST(DesignInput, Sizes)
{
    EXPECT_THAT(
        error_text<Error>([] { design(noise_regressors(50, 2), with_order(Order::joint), 60); }),
        HasSubstr("regressors of 50 volumes: expected 60"));
    Regressors nameless = noise_regressors(50, 2);
    nameless.names.pop_back();
    EXPECT_THAT(error_text<Error>([&] { design(nameless, with_order(Order::joint), 50); }),
                HasSubstr("1 name of 2 regressors"));
    Volumes uneven = Volumes::all_of(50);
    uneven.censored.conservativeResize(49);
    EXPECT_THAT(error_text<Error>([&] { make_design({}, uneven, tr, {}); }),
                HasSubstr("49 volumes: expected 50"));
}

TEST(DesignInput, ValuesThatAreNotFiniteAreNamed)
{
    for (const double value : {double(NAN), double(INFINITY)}) {
        Regressors regressors = noise_regressors(50, 2);
        regressors.values(31, 1) = value;
        EXPECT_THAT(error_text<Error>([&] { design(regressors, with_order(Order::joint), 50); }),
                    HasSubstr("regressor r1, volume 31 (from 0) is "));
    }
}

TEST(DesignInput, RepetitionTime)
{
    for (const double seconds : {0.0, -2.0, double(NAN), double(INFINITY)}) {
        EXPECT_THAT(error_text<UsageError>([&] {
                        make_design({}, Volumes::all_of(50), seconds, with_order(Order::joint));
                    }),
                    HasSubstr("expected more than 0"));
    }
}

TEST(DesignInput, NamesOfOrders)
{
    EXPECT_STREQ(name(Order::joint), "joint");
    EXPECT_STREQ(name(Order::cosine), "cosine");
    EXPECT_STREQ(name(Order::butterworth), "butterworth");
    EXPECT_STREQ(name(Order::bandpass_pad), "bandpass-pad");
}

} // namespace
