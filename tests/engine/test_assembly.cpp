// SPDX-License-Identifier: GPL-3.0-or-later
#include "dataset/subject.h"
#include "engine/assembly.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace
{

using Intervals = std::vector<std::pair<int, int>>;

/// A protocol as the parser builds it.
SubjectProtocol protocolOf(const std::vector<std::pair<QString, Intervals>> &conditions)
{
    SubjectProtocol protocol(QStringLiteral("test"), 1, static_cast<int>(conditions.size()));
    for (std::size_t c = 0; c < conditions.size(); ++c) {
        const auto index = static_cast<int>(c);
        ProtocolCondition condition;
        condition.name = conditions[c].first;
        condition.intervals = conditions[c].second;
        condition.index = index;
        protocol.conditions[index] = condition;
        for (const auto &interval : condition.intervals) {
            protocol.volumeConditions[interval.first] = index;
            protocol.volumeNames[interval.first] = condition.name;
            protocol.volumeEvents[interval.first] = 0;
        }
    }
    return protocol;
}

Subject subjectWith(const SubjectProtocol &protocol)
{
    Subject subject;
    subject.setProtocol(protocol);
    subject.setUseProtocol(true);
    return subject;
}

/// A run in which volume t (from 0) of node n holds 100 n + t.
Eigen::MatrixXf countingRun(int nodes, int volumes)
{
    Eigen::MatrixXf run(nodes, volumes);
    for (int n = 0; n < nodes; ++n) {
        for (int t = 0; t < volumes; ++t)
            run(n, t) = static_cast<float>(100 * n + t);
    }
    return run;
}

/// A "measure" that hands back the block it was called with.
Eigen::MatrixXf sameBlock(const Eigen::MatrixXf &block)
{
    return block;
}

TEST(MatrixFromRows, TakesEachRow)
{
    const float first[] = {1, 2, 3};
    const float second[] = {4, 5, 6};
    const float *rows[] = {first, second};
    Eigen::MatrixXf expected(2, 3);
    expected << 1, 2, 3, 4, 5, 6;
    EXPECT_EQ(matrixFromRows(rows, 2, 3), expected);
}

TEST(MatrixFromRows, WithoutRowsIsEmpty)
{
    EXPECT_EQ(matrixFromRows(nullptr, 0, 7).size(), 0);
}

TEST(AveragedTimeseries, IsTheMeanOverVoxels)
{
    Subject subject;
    Eigen::MatrixXf four(4, 3);
    four << 1, 2, 3, 5, 6, 7, 9, 10, 11, 1, 2, 5;
    Eigen::MatrixXf single(1, 3);
    single << 7, 8, 9;
    subject.appendTimeseries(four);
    subject.appendTimeseries(single);

    Eigen::MatrixXf expected(2, 3);
    expected << 4, 5, 6.5f, 7, 8, 9;
    EXPECT_EQ(subject.averagedTimeseries({0, 1}), expected);
}

TEST(AveragedTimeseries, AddsUpInSinglePrecision)
{
    constexpr int volumes = 60;
    for (const int voxels : {3, 5, 8, 33, 200}) {
        Eigen::MatrixXf series(voxels, volumes);
        for (int v = 0; v < voxels; ++v) {
            for (int t = 0; t < volumes; ++t)
                series(v, t) = 900.0f + 100.0f * std::sin(static_cast<float>(7 * v + 3 * t * t));
        }
        Subject subject;
        subject.appendTimeseries(series);
        const Eigen::MatrixXf nodes = subject.averagedTimeseries({0});
        int otherThanInDouble = 0;
        for (int t = 0; t < volumes; ++t) {
            EXPECT_EQ(nodes(0, t), series.col(t).sum() / static_cast<float>(voxels));
            const double exact = series.col(t).cast<double>().sum() / voxels;
            otherThanInDouble += nodes(0, t) != static_cast<float>(exact) ? 1 : 0;
        }
        EXPECT_GT(otherThanInDouble, 0) << voxels;
    }
}

TEST(AveragedTimeseries, KeepsTheOrderOfTheSelection)
{
    Subject subject;
    for (int voi = 0; voi < 3; ++voi)
        subject.appendTimeseries(Eigen::MatrixXf::Constant(2, 4, static_cast<float>(voi)));
    const Eigen::MatrixXf nodes = subject.averagedTimeseries({2, 0, 1, 2});
    ASSERT_EQ(nodes.rows(), 4);
    ASSERT_EQ(nodes.cols(), 4);
    EXPECT_EQ(nodes.col(3), (Eigen::Vector4f(2, 0, 1, 2)));
}

TEST(AveragedTimeseries, OfNothingSelectedHasNoRows)
{
    Subject subject;
    subject.appendTimeseries(Eigen::MatrixXf::Ones(2, 5));
    const Eigen::MatrixXf nodes = subject.averagedTimeseries({});
    EXPECT_EQ(nodes.rows(), 0);
    EXPECT_EQ(nodes.cols(), 5);
}

TEST(AveragedTimeseries, WithoutSeriesHasNoVolumes)
{
    const Eigen::MatrixXf nodes = Subject().averagedTimeseries({0, 1});
    EXPECT_EQ(nodes.rows(), 2);
    EXPECT_EQ(nodes.cols(), 0);
}

TEST(AveragedTimeseries, HasTheVolumesOfTheFirstVoi)
{
    Subject subject;
    subject.appendTimeseries(Eigen::MatrixXf::Ones(2, 3));
    subject.appendTimeseries(Eigen::MatrixXf::Constant(1, 5, 4.0f));
    for (const int voi : {0, 1})
        EXPECT_EQ(subject.averagedTimeseries({voi}).cols(), 3) << voi;
    EXPECT_EQ(subject.averagedTimeseries({1}), Eigen::MatrixXf::Constant(1, 3, 4.0f));
}

TEST(AveragedTimeseries, OfVoiBeyondTheSeriesIsNaN)
{
    Subject subject;
    subject.appendTimeseries(Eigen::MatrixXf::Ones(2, 5));
    const Eigen::MatrixXf nodes = subject.averagedTimeseries({0, 1, -1});
    EXPECT_EQ(nodes.row(0), Eigen::RowVectorXf::Ones(5));
    EXPECT_TRUE(nodes.row(1).array().isNaN().all());
    EXPECT_TRUE(nodes.row(2).array().isNaN().all());
}

TEST(AveragedTimeseries, OfVoiWithoutVoxelsIsZeroAndBecomesNaN)
{
    Subject subject;
    Eigen::MatrixXf course(1, 4);
    course << 1, 2, 1, 3;
    subject.appendTimeseries(course);
    subject.appendTimeseries(Eigen::MatrixXf::Zero(1, 4));
    const Eigen::MatrixXf nodes = subject.averagedTimeseries({0, 1});
    EXPECT_EQ(nodes.row(1), Eigen::RowVectorXf::Zero(4));
    const Eigen::MatrixXf r = correlationMatrix(nodes);
    EXPECT_TRUE(std::isnan(r(0, 1)) && std::isnan(r(1, 0)) && std::isnan(r(1, 1)));
    EXPECT_NEAR(r(0, 0), 1.0f, 1e-6f);
}

TEST(ConnectivityWorker, WithoutProtocolMeasuresTheWholeRun)
{
    Subject subject = subjectWith(protocolOf({{QStringLiteral("A"), {{1, 5}}}}));
    subject.setUseProtocol(false);
    const Eigen::MatrixXf run = countingRun(2, 20);
    const auto matrices = connectivityWorker(&subject, sameBlock, run);
    ASSERT_EQ(matrices.size(), 1u);
    EXPECT_EQ(matrices[0], run);
}

TEST(ConnectivityWorker, GivesOneSlicePerIntervalInTheOrderOfTime)
{
    const Subject subject = subjectWith(protocolOf(
        {{QStringLiteral("A"), {{21, 30}, {1, 10}}}, {QStringLiteral("B"), {{11, 20}}}}));
    const Eigen::MatrixXf run = countingRun(3, 30);
    const auto matrices = connectivityWorker(&subject, sameBlock, run);
    ASSERT_EQ(matrices.size(), 3u);
    EXPECT_EQ(matrices[0], run.middleCols(0, 10));
    EXPECT_EQ(matrices[1], run.middleCols(10, 10));
    EXPECT_EQ(matrices[2], run.middleCols(20, 10));
    EXPECT_THAT(
        subject.protocol().volumeNames.values(),
        testing::ElementsAre(QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("A")));
}

TEST(ConnectivityWorker, LetsTheLaterConditionHaveSharedStart)
{
    const Subject subject =
        subjectWith(protocolOf({{QStringLiteral("A"), {{5, 9}}}, {QStringLiteral("B"), {{5, 7}}}}));
    const Eigen::MatrixXf run = countingRun(1, 10);
    const auto matrices = connectivityWorker(&subject, sameBlock, run);
    ASSERT_EQ(matrices.size(), 1u);
    EXPECT_EQ(matrices[0], run.middleCols(4, 3));
}

TEST(ConnectivityWorker, TakesTheFirstIntervalOfConditionWithThatStart)
{
    const Subject subject = subjectWith(protocolOf({{QStringLiteral("A"), {{5, 6}, {5, 9}}}}));
    const Eigen::MatrixXf run = countingRun(1, 10);
    const auto matrices = connectivityWorker(&subject, sameBlock, run);
    ASSERT_EQ(matrices.size(), 1u);
    EXPECT_EQ(matrices[0], run.middleCols(4, 2));
}

/// No parser makes such a protocol; a slice stays a slice all the same.
TEST(ConnectivityWorker, GivesStartWithoutItsIntervalBlockWithoutVolumes)
{
    SubjectProtocol protocol = protocolOf({{QStringLiteral("A"), {{1, 4}}}});
    protocol.volumeConditions[6] = 0; // not an interval of A
    protocol.volumeConditions[8] = 7; // no condition at all
    const Subject subject = subjectWith(protocol);
    const auto matrices = connectivityWorker(&subject, sameBlock, countingRun(2, 10));
    ASSERT_EQ(matrices.size(), 3u);
    EXPECT_EQ(matrices[0].cols(), 4);
    for (const std::size_t slice : {1u, 2u}) {
        EXPECT_EQ(matrices[slice].rows(), 2);
        EXPECT_EQ(matrices[slice].cols(), 0);
    }
}

TEST(ConnectivityWorker, GivesEventOneColumn)
{
    const Subject subject = subjectWith(protocolOf({{QStringLiteral("A"), {{5, 5}}}}));
    const auto blocks = connectivityWorker(&subject, sameBlock, countingRun(2, 10));
    ASSERT_EQ(blocks.size(), 1u);
    EXPECT_EQ(blocks[0], countingRun(2, 10).col(4));
    const auto matrices = connectivityWorker(&subject, correlationMatrix, countingRun(2, 10));
    EXPECT_TRUE(matrices[0].array().isNaN().all());
}

TEST(ConnectivityWorker, OfEmptyProtocolGivesNothing)
{
    const Subject subject = subjectWith(SubjectProtocol());
    EXPECT_TRUE(connectivityWorker(&subject, sameBlock, countingRun(2, 10)).empty());
}

TEST(ConnectivityWorker, OfNoNodesGivesAnEmptyMatrix)
{
    Subject subject;
    const auto matrices = connectivityWorker(&subject, correlationMatrix, Eigen::MatrixXf(0, 10));
    ASSERT_EQ(matrices.size(), 1u);
    EXPECT_EQ(matrices[0].size(), 0);
}

struct CutCase {
    int from;
    int to;
    int first; ///< 0-based first column that is left
    int count;
};

class CutInterval : public testing::TestWithParam<CutCase>
{
};

TEST_P(CutInterval, StaysInsideTheRun)
{
    const CutCase cut = GetParam();
    const Subject subject = subjectWith(protocolOf({{QStringLiteral("A"), {{cut.from, cut.to}}}}));
    const Eigen::MatrixXf run = countingRun(2, 10);
    const auto matrices = connectivityWorker(&subject, sameBlock, run);
    ASSERT_EQ(matrices.size(), 1u);
    ASSERT_EQ(matrices[0].rows(), 2);
    ASSERT_EQ(matrices[0].cols(), cut.count);
    EXPECT_EQ(matrices[0], run.middleCols(cut.first, cut.count));
}

constexpr int most = std::numeric_limits<int>::max();
constexpr int least = std::numeric_limits<int>::min();
INSTANTIATE_TEST_SUITE_P(Assembly, CutInterval,
                         testing::Values(CutCase{8, 12, 7, 3}, CutCase{11, 12, 0, 0},
                                         CutCase{10, 10, 9, 1}, CutCase{-3, 2, 0, 2},
                                         CutCase{5, 3, 4, 0}, CutCase{0, 0, 0, 0},
                                         CutCase{1, most, 0, 10}, CutCase{most, most, 0, 0},
                                         CutCase{least, least, 0, 0}, CutCase{least, 4, 0, 4}));

TEST(ConnectivityWorker, OfIntervalBeyondTheRunGivesMatrixOfNaN)
{
    const Subject subject = subjectWith(protocolOf({{QStringLiteral("A"), {{50, 60}}}}));
    const auto matrices = connectivityWorker(&subject, correlationMatrix, countingRun(3, 10));
    ASSERT_EQ(matrices.size(), 1u);
    ASSERT_EQ(matrices[0].rows(), 3);
    ASSERT_EQ(matrices[0].cols(), 3);
    EXPECT_TRUE(matrices[0].array().isNaN().all());
}

TEST(ConnectivityWorker, CalledWithoutMeasureRaises)
{
    const Subject subject;
    EXPECT_THROW(connectivityWorker(&subject, MeasureFunction(), countingRun(1, 2)),
                 std::bad_function_call);
}

} // namespace
