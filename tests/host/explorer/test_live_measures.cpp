// SPDX-License-Identifier: GPL-3.0-or-later
// Measures of what is drawn, against the library on a matrix thresholded here.
#include "host/explorer/live_measures.h"

#include <cmath>
#include <gmock/gmock.h>
#include <limits>
#include <nodalis/nodalis.h>
#include <random>

namespace corvane
{
namespace
{

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

Eigen::MatrixXd randomMatrix(int nodes)
{
    std::mt19937 random(7);
    Eigen::MatrixXd values = Eigen::MatrixXd::Identity(nodes, nodes);
    for (int j = 1; j < nodes; ++j)
        for (int i = 0; i < j; ++i)
            values(i, j) = values(j, i) = double(random() % 20001) / 10000 - 1;
    return values;
}

TEST(LiveMeasures, AreThoseOfTheStrengthsThatAreKept)
{
    const Eigen::MatrixXd values = randomMatrix(30);
    const RankedEdges ranked(values, EdgeSigns::Both);
    const NetworkMeasures measures =
        measuresOf(ranked.kept({ThresholdKind::Weight, 0.6}), knownNodes(values));
    Eigen::MatrixXf weights = values.cwiseAbs().cast<float>();
    for (int j = 0; j < 30; ++j)
        for (int i = 0; i < 30; ++i)
            if (i == j || std::abs(values(i, j)) < 0.6)
                weights(i, j) = 0;
    const auto column = [&](const char *name) {
        return Eigen::Index(measures.columns.indexOf(QLatin1String(name)));
    };
    EXPECT_TRUE(measures.nodes.col(column("clustering_coeff"))
                    .isApprox(nodalis::clustering_coeff(weights).cast<double>().matrix()));
    EXPECT_TRUE(measures.nodes.col(column("local_efficiency"))
                    .isApprox(nodalis::local_efficiency(weights).cast<double>().matrix()));
    EXPECT_TRUE(measures.nodes.col(column("degree"))
                    .isApprox(nodalis::degree(weights).cast<double>().matrix()));
    // The mean of single precision numbers.
    EXPECT_FLOAT_EQ(float(measures.whole[column("global_efficiency")]),
                    nodalis::global_efficiency(weights));
    EXPECT_DOUBLE_EQ(measures.whole[column("degree")], measures.nodes.col(column("degree")).mean());
}

TEST(LiveMeasures, NodesWithoutValuesChangeNothing)
{
    const Eigen::MatrixXd values = randomMatrix(12);
    Eigen::MatrixXd wider = Eigen::MatrixXd::Constant(13, 13, nan);
    wider.topLeftCorner(12, 12) = values;
    const EdgeThreshold threshold{ThresholdKind::Density, 0.3};
    const auto narrow =
        measuresOf(RankedEdges(values, EdgeSigns::Both).kept(threshold), knownNodes(values));
    const auto wide =
        measuresOf(RankedEdges(wider, EdgeSigns::Both).kept(threshold), knownNodes(wider));
    EXPECT_TRUE(wide.nodes.topRows(12) == narrow.nodes);
    EXPECT_TRUE(wide.nodes.row(12).array().isNaN().all());
    EXPECT_TRUE((wide.whole == narrow.whole).all());
}

TEST(LiveMeasures, EndWhenTheyAreAsked)
{
    const Eigen::MatrixXd values = randomMatrix(12);
    const auto edges = RankedEdges(values, EdgeSigns::Both).kept({ThresholdKind::Density, 0.3});
    EXPECT_TRUE(measuresOf(edges, knownNodes(values), [] { return false; }).columns.isEmpty());
}

TEST(LiveMeasures, AreaIsTheTrapezoidOverTheRange)
{
    // (0.1 (1 + 3)/2 + 0.3 (3 + 2)/2) / 0.4
    const Eigen::Array3d y(1, 3, 2);
    EXPECT_DOUBLE_EQ(meanArea({0.1, 0.2, 0.5}, y), 2.375);
    EXPECT_DOUBLE_EQ(meanArea({0.1}, Eigen::ArrayXd::Constant(1, 4)), 4);
    EXPECT_TRUE(std::isnan(meanArea({}, Eigen::ArrayXd())));
}

TEST(LiveMeasures, CurvesHaveTheMeasuresOfEachDensity)
{
    const Eigen::MatrixXd values = randomMatrix(20);
    const RankedEdges ranked(values, EdgeSigns::Both);
    const std::vector<double> densities{0.1, 0.2, 0.4};
    const MeasureCurves curves =
        measureCurves(ranked, knownNodes(values), {ThresholdKind::Weight, 0.9}, densities);
    ASSERT_EQ(curves.densities, densities);
    const int degree = curves.steps[0].columns.indexOf(QStringLiteral("degree"));
    // 190 pairs: 19, 38 and 76 edges, each with two ends at 20 nodes.
    const Eigen::ArrayXd curve = curveOf(curves, degree, -1);
    EXPECT_DOUBLE_EQ(curve[0], 1.9);
    EXPECT_DOUBLE_EQ(curve[1], 3.8);
    EXPECT_DOUBLE_EQ(curve[2], 7.6);
    const auto at = measuresOf(ranked.kept({ThresholdKind::Density, 0.2}), knownNodes(values));
    EXPECT_EQ(curveOf(curves, degree, 5)[1], at.nodes(5, degree));
}

} // namespace
} // namespace corvane
