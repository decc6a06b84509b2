// SPDX-License-Identifier: GPL-3.0-or-later
#include "signals/cleaning.h"
#include "signals/drift.h"
#include "signals/strategies.h"
#include "tests/signals/error_text.h"
#include "tests/signals/near.h"
#include "tests/signals/noise.h"
#include "tests/signals/pipeline_table.h"

#include <gmock/gmock.h>

namespace
{

using namespace signals;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr double tr = 2;
constexpr Eigen::Index volumes = 300;
constexpr Order all_orders[] = {Order::joint, Order::cosine, Order::butterworth,
                                Order::bandpass_pad};

/// What a strategy chooses of a table in which a few volumes moved.
Selection selection(const std::string &strategy, Order order)
{
    ConfoundsTable table = pipeline_table::make(volumes);
    for (const Eigen::Index volume : {2, 60, 61, 62, 150, 299}) {
        table = pipeline_table::with(table, "framewise_displacement", volume, 0.9);
    }
    StrategyRequest request;
    request.strategy = strategy;
    request.volumes = volumes;
    request.fd_threshold = 0.5;
    request.order = order;
    return select(table, request);
}

/// The edges that every order can use.
Settings with_order(Order order, Standardize standardize = Standardize::none)
{
    return {order, 0.01, order == Order::cosine ? std::optional<double>() : 0.15, true,
            standardize};
}

std::vector<std::string> all_strategies()
{
    std::vector<std::string> names;
    for (const Strategy &strategy : strategies()) {
        names.emplace_back(strategy.name);
    }
    names.back() = "columns:csf*,rot_*";
    return names;
}

class EveryStrategyAndOrder : public testing::TestWithParam<std::tuple<std::string, Order>>
{
protected:
    static Design design(Standardize standardize = Standardize::none)
    {
        const auto &[strategy, order] = GetParam();
        const Selection chosen = selection(strategy, order);
        return make_design(chosen.regressors, chosen.volumes, tr, with_order(order, standardize));
    }
};

TEST_P(EveryStrategyAndOrder, MeanOfCleanedVoxelsIsTheCleanedMean)
{
    Noise noise(30);
    const Design plan = design();
    const Eigen::MatrixXd voxels = 5 * noise.serial(volumes, 60, 0.4).array() + 800;
    // Nodes of 1, 9, 20 and 30 voxels.
    Eigen::MatrixXd means = Eigen::MatrixXd::Zero(60, 4);
    means.col(0).segment(0, 1).setConstant(1);
    means.col(1).segment(1, 9).setConstant(1.0 / 9);
    means.col(2).segment(10, 20).setConstant(1.0 / 20);
    means.col(3).segment(30, 30).setConstant(1.0 / 30);
    const Eigen::MatrixXd of_nodes = clean(voxels * means, plan).series;
    const Eigen::MatrixXd of_voxels = clean(voxels, plan).series * means;
    // Rounding is that of values around 800.
    EXPECT_TRUE(near(of_voxels, of_nodes, 1e-9));
    EXPECT_GT(of_nodes.cwiseAbs().maxCoeff(), 0.1);
}

TEST_P(EveryStrategyAndOrder, RowsAreTheKeptVolumes)
{
    const auto &[strategy, order] = GetParam();
    const Selection chosen = selection(strategy, order);
    const Design plan = design();
    const Cleaned cleaned = clean(Noise(31).white(volumes, 2), plan);
    EXPECT_EQ(plan.rows, positions(chosen.volumes.kept()));
    EXPECT_EQ(cleaned.series.rows(), static_cast<Eigen::Index>(plan.rows.size()));
    EXPECT_EQ(plan.ledger.kept, cleaned.series.rows());
    EXPECT_EQ(plan.columns.rows(), cleaned.series.rows());
    EXPECT_EQ(plan.columns.cols(), static_cast<Eigen::Index>(plan.names.size()));
}

TEST_P(EveryStrategyAndOrder, NothingOfTheDesignIsLeft)
{
    const Design plan = design();
    // The regressors of bandpass_pad keep their own scales, so that the smallest are known to fewer
    // digits.
    const double rounding = std::get<Order>(GetParam()) == Order::bandpass_pad ? 1e-6 : 1e-10;
    const Eigen::MatrixXd cleaned = clean(Noise(32).white(volumes, 3), plan).series;
    for (Eigen::Index column = 0; column < plan.columns.cols(); ++column) {
        const Eigen::VectorXd direction = plan.columns.col(column).normalized();
        EXPECT_LT((direction.transpose() * cleaned).cwiseAbs().maxCoeff(), rounding)
            << plan.names[column];
    }
}

TEST_P(EveryStrategyAndOrder, RegressorsThemselvesVanish)
{
    const auto &[strategy, order] = GetParam();
    const Selection chosen = selection(strategy, order);
    const Eigen::MatrixXd values = chosen.regressors.values;
    // A mean may be left where the design has no intercept.
    Eigen::MatrixXd left = clean(values, design()).series;
    left.rowwise() -= left.colwise().mean().eval();
    for (Eigen::Index column = 0; column < values.cols(); ++column) {
        EXPECT_LT(left.col(column).cwiseAbs().maxCoeff(),
                  1e-8 * values.col(column).cwiseAbs().maxCoeff())
            << chosen.regressors.names[column];
    }
}

TEST_P(EveryStrategyAndOrder, BlocksOfARunAreCleanedAsTheWhole)
{
    const Design plan = design();
    const Eigen::MatrixXd series = Noise(33).white(volumes, 13).array() + 100;
    const Eigen::MatrixXd whole = clean(series, plan).series;
    EXPECT_TRUE(near(clean(series.leftCols(5), plan).series, whole.leftCols(5), 1e-11));
    EXPECT_TRUE(near(clean(series.rightCols(1), plan).series, whole.rightCols(1), 1e-11));
}

TEST_P(EveryStrategyAndOrder, CensoredVolumesHaveNoSay)
{
    const Design plan = design();
    const Eigen::MatrixXd series = Noise(34).white(volumes, 2);
    Eigen::MatrixXd spoilt = series;
    for (Eigen::Index volume = 0; volume < volumes; ++volume) {
        if (!plan.preparation.kept[volume]) {
            spoilt.row(volume).setConstant(1e6);
        }
    }
    EXPECT_TRUE(near(clean(spoilt, plan).series, clean(series, plan).series, 1e-10));
}

TEST_P(EveryStrategyAndOrder, ConstantSeriesHaveNothingLeft)
{
    for (const Standardize standardize :
         {Standardize::none, Standardize::zscore, Standardize::psc}) {
        const Cleaned cleaned =
            clean(Eigen::MatrixXd::Constant(volumes, 1, 1234.1), design(standardize));
        EXPECT_TRUE((cleaned.series.array() == cleaned.series(0, 0)).all());
    }
}

INSTANTIATE_TEST_SUITE_P(
    All, EveryStrategyAndOrder,
    testing::Combine(testing::ValuesIn(all_strategies()), testing::ValuesIn(all_orders)),
    [](const auto &instance) {
        std::string text = std::get<0>(instance.param) + "_" + name(std::get<1>(instance.param));
        std::replace_if(
            text.begin(), text.end(), [](char c) { return !std::isalnum(c); }, '_');
        return text;
    });

// What single orders promise.

TEST(CleaningOrders, JointWithoutCensoringIsCosine)
{
    const Eigen::MatrixXd series = Noise(35).serial(volumes, 5, 0.5);
    Selection chosen = selection("simple", Order::joint);
    chosen.volumes = Volumes::all_of(volumes);
    const auto cleaned = [&](Order order) {
        return clean(series, make_design(chosen.regressors, chosen.volumes, tr,
                                         {order, {}, {}, true, Standardize::zscore}))
            .series;
    };
    EXPECT_TRUE(near(cleaned(Order::joint), cleaned(Order::cosine), 1e-9));
}

TEST(CleaningOrders, OnlyJointLeavesNothingOfDriftAndRegressorsTogether)
{
    // Over kept volumes the cosines of `cosine` are detrended by the row, not by the volume.
    const Selection chosen = selection("simple", Order::joint);
    const Eigen::MatrixXd series = Noise(36).serial(volumes, 3, 0.5);
    const auto left = [&](Order order) {
        const Design plan = make_design(chosen.regressors, chosen.volumes, tr, with_order(order));
        const Eigen::MatrixXd cleaned = clean(series, plan).series;
        Eigen::VectorXd trend(plan.rows.size());
        std::copy(plan.rows.begin(), plan.rows.end(), trend.begin());
        trend.array() -= trend.mean();
        return (trend.normalized().transpose() * cleaned).cwiseAbs().maxCoeff();
    };
    EXPECT_LT(left(Order::joint), 1e-10);
    EXPECT_GT(left(Order::butterworth), 1e-4);
}

TEST(CleaningOrders, BandOfJointTakesWavesOutside)
{
    // 0.005 and 0.2 Hz are cosines 6 and 240 of 300 volumes of 2 s; 0.05 Hz is cosine 60.
    const Eigen::MatrixXd waves = cosines(volumes, {6, 240, 60});
    const Design plan = make_design({}, Volumes::all_of(volumes), tr,
                                    {Order::joint, 0.01, 0.1, true, Standardize::none});
    const Eigen::MatrixXd cleaned = clean(waves, plan).series;
    EXPECT_LT(cleaned.leftCols(2).cwiseAbs().maxCoeff(), 1e-12);
    EXPECT_GT(cleaned.col(2).norm(), 0.99);
}

TEST(CleaningOrders, NonSteadyVolumesAreCutOffBeforeBandpassPad)
{
    // Were they interpolated or padded over, the first rows would differ.
    const Eigen::MatrixXd series = Noise(37).serial(volumes, 3, 0.5);
    Volumes with_start = Volumes::all_of(volumes);
    with_start.non_steady.head(4).setConstant(true);
    const Settings settings = with_order(Order::bandpass_pad);
    const Eigen::MatrixXd found = clean(series, make_design({}, with_start, tr, settings)).series;
    const Eigen::MatrixXd wanted =
        clean(series.bottomRows(volumes - 4),
              make_design({}, Volumes::all_of(volumes - 4), tr, settings))
            .series;
    EXPECT_TRUE(near(found, wanted, 0));
}

TEST(CleaningOrders, NoneLeavesTheSeriesAsTheyAre)
{
    const Eigen::MatrixXd series = Noise(38).white(volumes, 3).array() + 50;
    const Selection chosen = selection("none", Order::joint);
    const auto cleaned = [&](Order order) {
        const Design plan =
            make_design(chosen.regressors, chosen.volumes, tr, {order, {}, {}, true, {}});
        EXPECT_EQ(plan.ledger.rank, 1);
        return clean(series, plan);
    };
    const Eigen::MatrixXd kept = series(positions(chosen.volumes.kept()), Eigen::all);
    EXPECT_EQ(cleaned(Order::cosine).series, kept);
    const Cleaned joint = cleaned(Order::joint);
    EXPECT_TRUE(near(joint.series.rowwise() + joint.means, kept, 1e-12)) << "but for the mean";
}

TEST(CleaningOrders, NoDetrendKeepsTheTrend)
{
    const Eigen::MatrixXd line = Eigen::VectorXd::LinSpaced(volumes, 0, 1);
    for (const Order order : {Order::joint, Order::cosine}) {
        Settings settings{order, 0.0, {}, true, Standardize::none};
        const auto spread = [&] {
            const Eigen::VectorXd left =
                clean(line, make_design({}, Volumes::all_of(volumes), tr, settings)).series;
            return left.maxCoeff() - left.minCoeff();
        };
        EXPECT_LT(spread(), 1e-12) << name(order);
        settings.detrend = false;
        EXPECT_NEAR(spread(), 1, 1e-12) << name(order);
    }
}

// Standardisation.

TEST(CleaningStandardize, ZScores)
{
    for (const Order order : all_orders) {
        const Selection chosen = selection("simple", order);
        const Design plan = make_design(chosen.regressors, chosen.volumes, tr,
                                        with_order(order, Standardize::zscore));
        const Eigen::MatrixXd found = clean(Noise(39).white(volumes, 4), plan).series;
        EXPECT_TRUE(near(found.colwise().sum(), Eigen::RowVectorXd::Zero(4), 1e-11));
        EXPECT_TRUE(near(found.colwise().squaredNorm() / double(found.rows() - 1),
                         Eigen::RowVectorXd::Ones(4), 1e-12));
    }
}

TEST(CleaningStandardize, PercentOfTheUncleanedMeanOverKeptVolumes)
{
    const Selection chosen = selection("simple", Order::joint);
    Eigen::MatrixXd series = Noise(40).white(volumes, 3);
    series.col(0).array() += 200;
    series.col(1).array() -= 50;
    // A mean of 0 on the kept volumes.
    series.col(2) = cosines(volumes, {volumes / 2}) * 3;
    const std::vector<Eigen::Index> rows = positions(chosen.volumes.kept());
    series(rows, 2).setZero();
    const auto plan = [&](Standardize standardize) {
        return make_design(chosen.regressors, chosen.volumes, tr,
                           with_order(Order::joint, standardize));
    };
    const Cleaned percent = clean(series, plan(Standardize::psc));
    const Cleaned plain = clean(series, plan(Standardize::none));
    const Eigen::RowVectorXd means = series(rows, Eigen::all).colwise().mean();
    EXPECT_TRUE(near(percent.means, means, 1e-12));
    for (const int i : {0, 1}) {
        EXPECT_TRUE(
            near(percent.series.col(i), 100 / std::abs(means[i]) * plain.series.col(i), 1e-10));
    }
    EXPECT_EQ(percent.series.col(2), Eigen::VectorXd::Zero(percent.series.rows()));
    EXPECT_THAT(percent.without_mean, ElementsAre(2));
    EXPECT_THAT(plain.without_mean, IsEmpty());
}

// Input.

TEST(CleaningInput, ValuesThatAreNotFiniteAreRefusedWithTheirPlace)
{
    for (const Order order : all_orders) {
        const Selection chosen = selection("simple", order);
        const Design plan = make_design(chosen.regressors, chosen.volumes, tr, with_order(order));
        for (const auto &[value, word] :
             {std::pair(double(NAN), "n/a"), std::pair(-double(INFINITY), "-inf")}) {
            // A volume that is left out is no excuse.
            for (const Eigen::Index volume : {0, 60, 100}) {
                Eigen::MatrixXd series = Eigen::MatrixXd::Ones(volumes, 5);
                series(volume, 3) = value;
                EXPECT_THAT(error_text<Error>([&] { clean(series, plan); }),
                            HasSubstr("series 3, volume " + std::to_string(volume) +
                                      " (both from 0) is " + word + ": expected a finite number"));
            }
        }
    }
}

TEST(CleaningInput, SizesMustFit)
{
    for (const Order order : all_orders) {
        const Design plan = make_design({}, Volumes::all_of(100), tr, with_order(order));
        EXPECT_THAT(error_text<Error>([&] { clean(Eigen::MatrixXd::Zero(99, 2), plan); }),
                    HasSubstr("series of 99 volumes: expected 100"));
        EXPECT_THAT(error_text<Error>([&] { clean(Eigen::MatrixXd(), plan); }),
                    HasSubstr("series of 0 volumes: expected 100"));
        const Cleaned nothing = clean(Eigen::MatrixXd(100, 0), plan);
        EXPECT_EQ(nothing.series.rows(), 100);
        EXPECT_EQ(nothing.series.cols(), 0);
    }
}

} // namespace
