// SPDX-License-Identifier: GPL-3.0-or-later
// Every file of clean/: what two other programs made of 28 series with 6 confounds, TR 1.89 s.
#include "signals/cleaning.h"
#include "signals/correlation.h"
#include "signals/drift.h"
#include "tests/signals/near.h"
#include "tests/signals/reference_data.h"

#include <QJsonArray>

namespace
{

using namespace signals;

constexpr double tr = 1.89;
constexpr Order all_orders[] = {Order::joint, Order::cosine, Order::butterworth,
                                Order::bandpass_pad};

class ReferenceCleaning : public testing::Test
{
protected:
    void SetUp() override
    {
        if (!reference_data::is_there()) {
            GTEST_SKIP() << "the folder of reference numbers is missing";
        }
        series = reference_data::matrix("clean/input_signals.csv");
        regressors.values = reference_data::matrix("clean/input_confounds.csv");
        regressors.names = {"wm", "vent", "brain", "d_wm", "d_vent", "d_brain"};
        facts = reference_data::object("clean/reference.json");
    }

    /// The volumes whose numbers stand in the reference as "<name>_censored" are left out.
    Volumes without(const char *name) const
    {
        Volumes volumes = Volumes::all_of(series.rows());
        for (const QJsonValue &volume :
             facts["_meta"].toObject()[QString(name) + "_censored"].toArray()) {
            volumes.censored[volume.toInt()] = true;
        }
        return volumes;
    }
    Eigen::MatrixXd cleaned(const Settings &settings, const Volumes &volumes) const
    {
        return clean(series, make_design(regressors, volumes, tr, settings)).series;
    }
    Eigen::MatrixXd cleaned(const Settings &settings) const
    {
        return cleaned(settings, Volumes::all_of(series.rows()));
    }
    static Eigen::MatrixXd file(const std::string &name)
    {
        return reference_data::matrix("clean/" + name + ".csv");
    }
    /// What the reference keeps of larger results: the first entries of rows 0 and 100, and a sum.
    void expect_summary(const Eigen::MatrixXd &values, const char *name, double tolerance) const
    {
        const QJsonObject wanted = facts[name].toObject();
        for (int i = 0; i < 5; ++i) {
            EXPECT_NEAR(values(0, i), wanted["first_row_first5"].toArray()[i].toDouble(),
                        tolerance);
            EXPECT_NEAR(values(100, i), wanted["row_100_first5"].toArray()[i].toDouble(),
                        tolerance);
        }
        EXPECT_NEAR(values.cwiseAbs().sum(), wanted["sum_abs"].toDouble(),
                    tolerance * double(values.size()));
        EXPECT_EQ(values.rows(), wanted["shape"].toArray()[0].toInt());
    }

    Eigen::MatrixXd series;
    Regressors regressors;
    QJsonObject facts;
};

const Settings butterworth_z{Order::butterworth, 0.01, 0.08, true, Standardize::zscore};
const Settings bandpass{Order::bandpass_pad, {}, {}, true, Standardize::none};

TEST_F(ReferenceCleaning, CosineDriftOfThreeEdges)
{
    const Eigen::MatrixXd wanted = file("cosine_drift_hp0.008");
    ASSERT_EQ(wanted.cols(), 8);
    EXPECT_TRUE(near(cosines(250, cosines_below(250, tr, 0.008)), wanted.leftCols(7), 1e-14));
    for (const char *edge : {"0.008", "0.01", "0.0078125"}) {
        const QJsonObject facts_of_edge = facts[QString("cosine_drift_hp") + edge].toObject();
        EXPECT_EQ(cosine_count(250, tr, std::stod(edge)),
                  facts_of_edge["columns_without_constant"].toInt());
    }
}

TEST_F(ReferenceCleaning, LinearDetrend)
{
    expect_summary(detrended(series), "detrend", 1e-11);
    expect_summary(zscored(detrended(series)), "detrend_zscore", 1e-12);
}

TEST_F(ReferenceCleaning, ButterworthBandForwardAndBackward)
{
    const std::vector<Section> sections = butterworth(5, tr, {0.01, 0.08});
    EXPECT_EQ(padding(sections), 33);
    EXPECT_TRUE(near(forward_backward(sections, series, Extension::odd, 33),
                     file("butterworth5_band"), 1e-11));
}

TEST_F(ReferenceCleaning, ButterworthLowPassForwardAndBackward)
{
    const std::vector<Section> sections = butterworth(5, tr, {0, 0.08});
    EXPECT_EQ(padding(sections), 18);
    expect_summary(forward_backward(sections, series, Extension::odd, 18), "butterworth5_low",
                   1e-11);
}

TEST_F(ReferenceCleaning, ButterworthHasTheReferencesPoles)
{
    // Sections may pair zeros and poles differently; the poles themselves may not differ.
    for (const auto &[name, band] : {std::pair("sos_order5_band", Band{0.01, 0.08}),
                                     std::pair("sos_order5_low", Band{0, 0.08})}) {
        std::vector<Section> sections = butterworth(5, tr, band);
        const QJsonArray wanted = facts[name].toObject()["sos"].toArray();
        ASSERT_EQ(static_cast<int>(sections.size()), wanted.size());
        for (const QJsonValue &row : wanted) {
            const double a1 = row.toArray()[4].toDouble();
            const double a2 = row.toArray()[5].toDouble();
            EXPECT_TRUE(std::any_of(sections.begin(), sections.end(),
                                    [&](const Section &own) {
                                        return std::abs(own.a1 - a1) < 1e-12 &&
                                               std::abs(own.a2 - a2) < 1e-12;
                                    }))
                << name << ": no section with a1 = " << a1;
        }
    }
}

TEST_F(ReferenceCleaning, OrderCosine)
{
    const Settings settings{Order::cosine, 0.008, {}, true, Standardize::zscore};
    EXPECT_TRUE(near(cleaned(settings), file("clean_cosine008_conf_z"), 1e-9));
}

TEST_F(ReferenceCleaning, OrderCosineTakesItsDefaultEdge)
{
    const Settings settings{Order::cosine, {}, {}, true, Standardize::zscore};
    EXPECT_TRUE(near(cleaned(settings), file("clean_cosine008_conf_z"), 1e-9));
}

TEST_F(ReferenceCleaning, OrderCosineOfKeptVolumes)
{
    // Without drift: an edge of 0 is none.
    const Settings settings{Order::cosine, 0.0, {}, true, Standardize::zscore};
    expect_summary(cleaned(settings, without("edge")), "nofilter_conf_z_scrub", 1e-9);
}

TEST_F(ReferenceCleaning, OrderJointIsOrderCosineWithoutCensoring)
{
    const Settings settings{Order::joint, 0.008, {}, true, Standardize::zscore};
    EXPECT_TRUE(near(cleaned(settings), file("clean_cosine008_conf_z"), 1e-9));
}

TEST_F(ReferenceCleaning, OrderButterworth)
{
    const Eigen::MatrixXd found = cleaned(butterworth_z);
    EXPECT_TRUE(near(found, file("clean_butter_conf_z"), 1e-9));
    EXPECT_TRUE(near(pearson(found), file("corr_butter_conf_z"), 1e-9));
}

TEST_F(ReferenceCleaning, OrderButterworthOverInnerGaps)
{
    EXPECT_TRUE(near(cleaned(butterworth_z, without("inner")),
                     file("clean_butter_conf_z_scrub_inner"), 1e-9));
}

TEST_F(ReferenceCleaning, OrderButterworthOverGapsAtTheEnds)
{
    const Eigen::MatrixXd found = cleaned(butterworth_z, without("edge"));
    EXPECT_TRUE(near(found, file("clean_butter_conf_z_scrub_edge_fixed"), 1e-9));
    expect_summary(found, "butter_conf_z_scrub_edge_fixed", 1e-9);
}

TEST_F(ReferenceCleaning, TheFaultOfMirroredVolumesIsNotOurs)
{
    // The tool as it is, not mended, leaves volumes uninterpolated whose mirror volume is censored
    // too: its summary must not be ours.
    const Eigen::MatrixXd found = cleaned(butterworth_z, without("edge"));
    const QJsonObject as_is = facts["butter_conf_z_scrub_edge_asis"].toObject();
    EXPECT_GT(std::abs(found(100, 0) - as_is["row_100_first5"].toArray()[0].toDouble()), 0.5);
}

TEST_F(ReferenceCleaning, OrderBandpassPad)
{
    EXPECT_TRUE(relatively_near(cleaned(bandpass), file("xcpd_nocensor"), 1e-9));
}

TEST_F(ReferenceCleaning, OrderBandpassPadOverGaps)
{
    const Volumes volumes = without("edge");
    const Eigen::MatrixXd wanted =
        file("xcpd_censor_edge_interpolated")(positions(volumes.kept()), Eigen::all);
    EXPECT_TRUE(relatively_near(cleaned(bandpass, volumes), wanted, 1e-9));
}

TEST_F(ReferenceCleaning, OrdersJointAndCosineDifferOnceVolumesAreLeftOut)
{
    // The line of the one runs over the volumes of the file, that of the other over the rows left.
    for (const char *name : {"inner", "edge"}) {
        const auto left = [&](Order order) {
            return cleaned({order, 0.008, {}, true, Standardize::zscore}, without(name));
        };
        const Eigen::MatrixXd joint = left(Order::joint);
        const Eigen::MatrixXd cosine = left(Order::cosine);
        EXPECT_GT((joint - cosine).cwiseAbs().maxCoeff(), 0.5);
        EXPECT_LT((joint - cosine).cwiseAbs().maxCoeff(), 0.7);
        EXPECT_GT((pearson(joint) - pearson(cosine)).cwiseAbs().maxCoeff(), 0.03);
        EXPECT_LT((pearson(joint) - pearson(cosine)).cwiseAbs().maxCoeff(), 0.06);
    }
}

TEST_F(ReferenceCleaning, PercentOfTheToolRelateToWhatTheFitLeavesOfTheMean)
{
    // Ours relate to the level of the series before cleaning.
    Settings settings = butterworth_z;
    settings.standardize = Standardize::none;
    const Eigen::MatrixXd left = cleaned(settings);
    const Eigen::RowVectorXd means = left.colwise().mean();
    const Eigen::MatrixXd percent =
        100 * ((left.rowwise() - means).array().rowwise() / means.array().abs()).matrix();
    const QJsonArray of_tool = facts["butter_conf_psc"].toObject()["row_100_first5"].toArray();
    settings.standardize = Standardize::psc;
    const Eigen::MatrixXd ours = cleaned(settings);
    for (int i = 0; i < 5; ++i) {
        EXPECT_NEAR(percent(100, i) / of_tool[i].toDouble(), 1, 1e-9);
        EXPECT_NEAR(ours(100, i), 100 * (left(100, i) - means[i]) / std::abs(series.col(i).mean()),
                    1e-9 * std::abs(ours(100, i)));
    }
}

/// The mean correlation of the pairs of one region left and right, and of all other pairs: 14
/// regions of the left come first, then the same of the right.
std::pair<double, double> homotopic_and_other(const Eigen::MatrixXd &r)
{
    double homotopic = 0;
    double other = 0;
    for (Eigen::Index i = 0; i < 28; ++i) {
        for (Eigen::Index j = i + 1; j < 28; ++j) {
            (j == i + 14 ? homotopic : other) += r(i, j);
        }
    }
    return {homotopic / 14, other / (378 - 14)};
}

TEST_F(ReferenceCleaning, HomotopicPairsStandOutAndCleaningKeepsThem)
{
    // The numbers stand in docs/cleaning.md.
    const auto [pairs_before, others_before] = homotopic_and_other(pearson(series));
    EXPECT_NEAR(pairs_before, 0.517, 0.001);
    EXPECT_NEAR(others_before, 0.072, 0.001);
    const auto [pairs, others] =
        homotopic_and_other(pearson(cleaned({Order::joint, 0.008, {}, true, Standardize::none})));
    EXPECT_NEAR(pairs, 0.515, 0.001);
    EXPECT_NEAR(others, 0.071, 0.001);
}

TEST_F(ReferenceCleaning, MeansOfNodesAreMeansOfCleanedVoxels)
{
    for (const Order order : all_orders) {
        const Settings settings{order, 0.01, 0.1, true, Standardize::none};
        const Design design = make_design(regressors, without("edge"), tr, settings);
        const Eigen::MatrixXd mean = clean(series.rowwise().mean(), design).series;
        EXPECT_TRUE(relatively_near(clean(series, design).series.rowwise().mean(), mean, 1e-12))
            << name(order);
    }
}

} // namespace
