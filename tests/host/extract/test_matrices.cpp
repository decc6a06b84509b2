// SPDX-License-Identifier: GPL-3.0-or-later
// Parts of a run and their matrices.
#include "host/derivatives/bids_names.h"
#include "host/extract/matrices.h"
#include "tests/signals/error_text.h"
#include "tests/signals/near.h"
#include "tests/signals/noise.h"

#include <Eigen/LU>
#include <gmock/gmock.h>
#include <numeric>

namespace corvane
{
namespace
{

using Eigen::MatrixXd;
using testing::ElementsAre;
using testing::HasSubstr;
using Index = Eigen::Index;

std::vector<Index> upTo(Index count)
{
    std::vector<Index> numbers(static_cast<std::size_t>(count));
    std::iota(numbers.begin(), numbers.end(), Index(0));
    return numbers;
}

CleanedSeries noise(Index volumes, Index nodes)
{
    Noise random(7);
    CleanedSeries series;
    series.values = random.white(volumes, nodes);
    series.values.col(1) += series.values.col(0);
    series.volumes = upTo(volumes);
    series.degrees = double(volumes) - 3;
    return series;
}

std::vector<Part> windowsOf(const PartsRequest &request, const CleanedSeries &series, Index volumes,
                            double repetitionTime = 2)
{
    return partsOf(request, series.volumes, volumes, 0, repetitionTime);
}

/// Textbook correlation with weights, from sums.
double weightedCorrelation(const Eigen::ArrayXd &x, const Eigen::ArrayXd &y,
                           const Eigen::ArrayXd &weights)
{
    const Eigen::ArrayXd w = weights / weights.sum();
    const Eigen::ArrayXd dx = x - (w * x).sum();
    const Eigen::ArrayXd dy = y - (w * y).sum();
    return (w * dx * dy).sum() / std::sqrt((w * dx * dx).sum() * (w * dy * dy).sum());
}

TEST(Parts, TheWholeRunIsTheFirst)
{
    const std::vector<Part> parts = windowsOf({}, noise(20, 2), 20);
    ASSERT_EQ(parts.size(), 1U);
    EXPECT_EQ(parts[0].entity, QString());
    EXPECT_EQ(parts[0].rows.size(), 20U);
    EXPECT_EQ(parts[0].effective, 20);
}

TEST(Parts, WindowsAreNumberedAndFull)
{
    PartsRequest request;
    request.window = 40;
    request.step = 10;
    const std::vector<Part> parts = windowsOf(request, noise(50, 2), 50);
    ASSERT_EQ(parts.size(), 8U);
    EXPECT_EQ(parts[1].entity, QStringLiteral("window-1"));
    EXPECT_EQ(parts[1].windows[0].length, 20);
    EXPECT_EQ(parts[7].windows[0].first, 30);
    EXPECT_EQ(parts[7].rows.back(), 49);
    EXPECT_DOUBLE_EQ(parts[7].effective, 20);
}

TEST(Parts, ManyWindowsHaveNumbersOfOneLength)
{
    PartsRequest request;
    request.window = 40;
    request.step = 0;
    EXPECT_EQ(windowsOf(request, noise(50, 2), 50)[1].entity, QStringLiteral("window-01"));
}

TEST(Parts, AWindowOfFewKeptVolumesIsNotFilled)
{
    PartsRequest request;
    request.window = 40;
    request.step = 40;
    CleanedSeries series = noise(31, 2);
    series.volumes.clear(); // volumes 0..8 of 20, then 18 of 20
    for (Index volume = 0; volume < 40; ++volume)
        if (volume < 9 || volume >= 18)
            series.volumes.push_back(volume);
    series.values.conservativeResize(Index(series.volumes.size()), Eigen::NoChange);
    const std::vector<Part> parts = windowsOf(request, series, 40);
    ASSERT_EQ(parts.size(), 3U);
    EXPECT_EQ(parts[1].rows.size(), 11U);
    EXPECT_TRUE(parts[1].filled);
    series.volumes.erase(series.volumes.begin(), series.volumes.begin() + 3);
    EXPECT_FALSE(windowsOf(request, series, 40)[1].filled);
}

PartsRequest twoConditions()
{
    PartsRequest request;
    EventsTable table;
    table.conditions = QStringList{QStringLiteral("go!"), QStringLiteral("go?")};
    table.events = {{QStringLiteral("go!"), 0, 24, QString()},
                    {QStringLiteral("go?"), 30, 4, QString()},
                    {QStringLiteral("go!"), 40, 12, QString()}};
    request.events = table;
    return request;
}

TEST(Parts, AConditionHasTheVolumesOfAllItsIntervals)
{
    const std::vector<Part> parts = windowsOf(twoConditions(), noise(40, 2), 40);
    ASSERT_EQ(parts.size(), 3U);
    EXPECT_EQ(parts[1].entity, QStringLiteral("cond-go"));
    EXPECT_EQ(parts[1].condition, QStringLiteral("go!"));
    EXPECT_EQ(parts[1].rows.size(), 18U);
    EXPECT_EQ(parts[1].rows.back(), 25);
    EXPECT_TRUE(parts[1].filled);
    EXPECT_EQ(parts[2].entity, QStringLiteral("cond-go2"));
    EXPECT_THAT(parts[2].rows, ElementsAre(15, 16));
    EXPECT_FALSE(parts[2].filled);
}

TEST(Parts, ConditionsAreDelayedAndSplit)
{
    PartsRequest request = twoConditions();
    request.delay = 6;
    request.perInterval = true;
    const std::vector<Part> parts = windowsOf(request, noise(40, 2), 40);
    ASSERT_EQ(parts.size(), 6U);
    EXPECT_EQ(parts[1].rows.front(), 3);
    EXPECT_EQ(parts[2].entity, QStringLiteral("cond-go_interval-1"));
    EXPECT_EQ(parts[2].rows.size(), 12U);
    EXPECT_EQ(parts[3].entity, QStringLiteral("cond-go_interval-2"));
    EXPECT_EQ(parts[3].rows.front(), 23);
}

TEST(Matrices, PearsonOfTheWholeRun)
{
    const CleanedSeries series = noise(60, 3);
    const MatrixXd r =
        matrixOf(series, windowsOf({}, series, 60)[0], Relationship::Pearson, false).values;
    EXPECT_NEAR(
        r(0, 1),
        weightedCorrelation(series.values.col(0), series.values.col(1), Eigen::ArrayXd::Ones(60)),
        1e-14);
    EXPECT_EQ(r(1, 0), r(0, 1));
    EXPECT_EQ(r(2, 2), 1);
}

TEST(Matrices, AWindowWeighsItsVolumes)
{
    CleanedSeries series = noise(60, 3);
    PartsRequest request;
    request.window = 40;
    request.step = 40;
    request.taper = signals::Taper::hann;
    const Part part = windowsOf(request, series, 60)[2];
    Eigen::ArrayXd weights(20);
    for (int j = 0; j < 20; ++j)
        weights[j] = std::pow(std::sin(3.14159265358979 * (j + 0.5) / 20), 2);
    const double wanted = weightedCorrelation(series.values.col(0).segment(20, 20),
                                              series.values.col(1).segment(20, 20), weights);
    EXPECT_NEAR(matrixOf(series, part, Relationship::Pearson, false).values(0, 1), wanted, 1e-12);
    EXPECT_NEAR(matrixOf(series, part, Relationship::FisherZ, false).values(0, 1),
                std::atanh(wanted), 1e-12);
}

TEST(Matrices, AnUntaperedWindowIsTheRunOfItsVolumes)
{
    const CleanedSeries series = noise(60, 3);
    PartsRequest request;
    request.window = 40;
    request.step = 40;
    const Part part = windowsOf(request, series, 60)[2];
    CleanedSeries alone = series;
    alone.values = series.values.middleRows(20, 20);
    alone.volumes = upTo(20);
    const Part whole = windowsOf({}, alone, 20)[0];
    for (const Relationship relationship :
         {Relationship::Pearson, Relationship::Spearman, Relationship::Partial})
        EXPECT_TRUE(near(matrixOf(series, part, relationship, false).values,
                         matrixOf(alone, whole, relationship, false).values, 1e-12));
}

TEST(Matrices, NodesWithoutValuesHaveNoneAndChangeNothing)
{
    CleanedSeries series = noise(60, 4);
    const MatrixXd wanted =
        matrixOf(series, windowsOf({}, series, 60)[0], Relationship::Partial, false).values;
    CleanedSeries more = series;
    more.values.resize(60, 6);
    more.values << series.values.leftCols(2), Eigen::VectorXd::Constant(60, NAN),
        series.values.rightCols(2), Eigen::VectorXd::Constant(60, 5);
    const MatrixXd found =
        matrixOf(more, windowsOf({}, more, 60)[0], Relationship::Partial, false).values;
    const std::vector<int> nodes{0, 1, 3, 4};
    EXPECT_TRUE(near(found(nodes, nodes), wanted, 1e-13));
    EXPECT_TRUE(found.col(2).array().isNaN().all());
    EXPECT_TRUE(found.row(5).array().isNaN().all());
}

TEST(Matrices, ThePluginsPartialCorrelationIsItsOwn)
{
    const CleanedSeries series = noise(60, 3);
    const Part whole = windowsOf({}, series, 60)[0];
    const MatrixXd r = matrixOf(series, whole, Relationship::Pearson, false).values;
    const MatrixXd p = r.inverse();
    const MatrixXd found = matrixOf(series, whole, Relationship::PartialTessera, false).values;
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            EXPECT_NEAR(found(i, j), -p(i, j) / std::sqrt(p(i, i) * r(j, j)), 1e-5);
}

TEST(Matrices, CovarianceIsDividedByTheDegreesOfFreedom)
{
    CleanedSeries series = noise(60, 2);
    series.values.rowwise() -= series.values.colwise().mean().eval();
    const Part whole = windowsOf({}, series, 60)[0];
    EXPECT_NEAR(matrixOf(series, whole, Relationship::Covariance, false).values(0, 0),
                series.values.col(0).squaredNorm() / 57, 1e-12);
}

TEST(Matrices, ShrinkageIsToldAndMakesPartialCorrelationsOfManyNodesPossible)
{
    const CleanedSeries series = noise(20, 30);
    const Part whole = windowsOf({}, series, 20)[0];
    EXPECT_THAT(
        error_text<signals::Error>([&] { matrixOf(series, whole, Relationship::Partial, false); }),
        HasSubstr("--shrinkage ledoit-wolf"));
    EXPECT_THAT(error_text<signals::Error>(
                    [&] { matrixOf(series, whole, Relationship::PartialTessera, false); }),
                HasSubstr("partial correlation of 30 nodes with 17"));
    for (const Relationship relationship :
         {Relationship::Partial, Relationship::PartialTessera, Relationship::Covariance}) {
        const NodeMatrix found = matrixOf(series, whole, relationship, true);
        ASSERT_TRUE(found.shrinkage.has_value());
        EXPECT_GT(*found.shrinkage, 0);
        EXPECT_LE(*found.shrinkage, 1);
        EXPECT_TRUE(found.values.allFinite());
    }
    EXPECT_FALSE(matrixOf(series, whole, Relationship::Pearson, true).shrinkage.has_value());
}

TEST(Matrices, IntervalsOnTheirOwnMeansHaveNoSharedLevel)
{
    CleanedSeries series = noise(40, 2);
    for (int node = 0; node < 2; ++node)
        series.values.col(node).segment(20, 6).array() += 100;
    PartsRequest request = twoConditions();
    const Part together = windowsOf(request, series, 40)[1];
    EXPECT_GT(matrixOf(series, together, Relationship::Pearson, false).values(0, 1), 0.99);
    request.centreIntervals = true;
    const Part centred = windowsOf(request, series, 40)[1];
    EXPECT_LT(matrixOf(series, centred, Relationship::Pearson, false).values(0, 1), 0.97);
}

TEST(Matrices, APartThatIsNotFilledHasNoValues)
{
    const CleanedSeries series = noise(40, 2);
    const Part part = windowsOf(twoConditions(), series, 40)[2];
    EXPECT_TRUE(matrixOf(series, part, Relationship::Pearson, false).values.array().isNaN().all());
}

TEST(OutputNames, OfRuns)
{
    EXPECT_EQ(
        runPrefix(QStringLiteral("/d/sub-01_task-rest_space-T1w_res-2_desc-preproc_bold.nii.gz")),
        QStringLiteral("sub-01_task-rest_space-T1w_res-2"));
    EXPECT_EQ(runPrefix(QStringLiteral("my run.nii")), QStringLiteral("my run"));
}

TEST(OutputNames, OfAtlases)
{
    EXPECT_EQ(atlasName(QStringLiteral("tpl-X_atlas-Schaefer2018_desc-100P_dseg.nii.gz")),
              QStringLiteral("Schaefer2018"));
    EXPECT_EQ(atlasName(QStringLiteral("tpl-X_seg-aparc_dseg.nii")), QStringLiteral("aparc"));
    EXPECT_EQ(atlasName(QStringLiteral("tpl-X_desc-100P7N_dseg.nii")), QStringLiteral("100P7N"));
    EXPECT_EQ(atlasName(QStringLiteral("my_Atlas 2.nii")), QStringLiteral("myAtlas2"));
}

} // namespace
} // namespace corvane
