// SPDX-License-Identifier: GPL-3.0-or-later
#include "dataset/subject.h"
#include "engine/compute_checks.h"

#include <gmock/gmock.h>

#include <limits>

namespace
{

using testing::ElementsAre;

constexpr float nan = std::numeric_limits<float>::quiet_NaN();
constexpr float infinity = std::numeric_limits<float>::infinity();

std::vector<std::string> texts(const QStringList &lines)
{
    std::vector<std::string> all;
    for (const QString &line : lines)
        all.push_back(line.toStdString());
    return all;
}

/// Three nodes that differ, over so many volumes.
Eigen::MatrixXf goodRun(int volumes)
{
    Eigen::MatrixXf run(3, volumes);
    for (int t = 0; t < volumes; ++t)
        run.col(t) << static_cast<float>(t % 3), static_cast<float>(t % 5),
            static_cast<float>(t * t % 7);
    return run;
}

class ComputeChecks : public testing::Test
{
protected:
    ComputeChecks()
    {
        ConnectivityScheme scheme;
        scheme.seedVois = {4, 0, 2};
        subject.setScheme(scheme);
    }

    /// Conditions of intervals, in the order of their starts.
    struct Interval {
        QString name;
        int from;
        int to;
        int isEvent = 0;
    };
    void setIntervals(const std::vector<Interval> &intervals)
    {
        SubjectProtocol protocol(QStringLiteral("test"), 1, static_cast<int>(intervals.size()));
        for (const Interval &interval : intervals) {
            const int index = static_cast<int>(protocol.conditions.size());
            ProtocolCondition condition;
            condition.name = interval.name;
            condition.intervals = {{interval.from, interval.to}};
            condition.isEvent = interval.isEvent;
            protocol.conditions[index] = condition;
            protocol.volumeConditions[interval.from] = index;
            protocol.volumeNames[interval.from] = interval.name;
            protocol.volumeEvents[interval.from] = interval.isEvent;
        }
        subject.setProtocol(protocol);
        subject.setUseProtocol(true);
    }

    std::vector<std::string> warnings(const Eigen::MatrixXf &run) const
    {
        return texts(computeWarnings(subject, run, {"one", "two", "three"}));
    }

    Subject subject;
};

TEST_F(ComputeChecks, SayNothingOfAGoodRun)
{
    EXPECT_THAT(warnings(goodRun(20)), ElementsAre());
    subject.setMeasure(2);
    EXPECT_THAT(warnings(goodRun(4)), ElementsAre());
    setIntervals({{"a", 1, 10}, {"b", 11, 20}});
    EXPECT_THAT(warnings(goodRun(20)), ElementsAre());
}

TEST_F(ComputeChecks, FindTheFaultOfEachNode)
{
    Eigen::MatrixXf run = goodRun(20);
    run.row(0).setConstant(7);
    run(1, 19) = nan;
    subject.emptyVois = {2, 3};
    EXPECT_THAT(nodeFaults(subject, run),
                ElementsAre(NodeFault::Constant, NodeFault::NotFinite, NodeFault::Empty));
    run(1, 19) = infinity;
    EXPECT_EQ(nodeFaults(subject, run)[1], NodeFault::NotFinite);
    run(0, 0) = 8;
    EXPECT_EQ(nodeFaults(subject, run)[0], NodeFault::None);
}

TEST_F(ComputeChecks, NameTheNodesWithoutConnections)
{
    Eigen::MatrixXf run = goodRun(20);
    run.row(0).setConstant(7);
    run(1, 3) = nan;
    subject.emptyVois = {2};
    EXPECT_THAT(
        warnings(run),
        ElementsAre("1 node without voxels: \"three\"; it has no connections",
                    "1 node with values that are not finite: \"two\"; it has no connections",
                    "1 node with the same value in every volume: \"one\"; it has no connections"));
}

TEST_F(ComputeChecks, SayThatOneSuchNodeTakesTheWholePartialCorrelation)
{
    subject.setMeasure(2);
    Eigen::MatrixXf run = goodRun(20);
    run.topRows(2).setZero();
    EXPECT_THAT(warnings(run), ElementsAre("2 nodes with the same value in every volume: \"one\", "
                                           "\"two\"; no partial correlation is known"));
}

TEST_F(ComputeChecks, NameFiveOfManyNodes)
{
    ConnectivityScheme scheme;
    QStringList names;
    for (int node = 0; node < 12; ++node) {
        scheme.seedVois += node;
        names += QString::number(node);
    }
    subject.setScheme(scheme);
    EXPECT_THAT(texts(computeWarnings(subject, Eigen::MatrixXf::Zero(12, 5), names)),
                ElementsAre("12 nodes with the same value in every volume: \"0\", \"1\", \"2\", "
                            "\"3\", \"4\" and 7 more; they have no connections"));
}

TEST_F(ComputeChecks, CountTheVolumesOfAPartialCorrelation)
{
    EXPECT_THAT(warnings(goodRun(3)), ElementsAre());
    subject.setMeasure(2);
    EXPECT_THAT(
        warnings(goodRun(3)),
        ElementsAre("partial correlation of 3 nodes takes at least 4 volumes: the run has 3"));
    setIntervals({{"a", 1, 4}, {"b", 5, 7}, {"trigger", 8, 8, 1}, {"c", 9, 20}, {"d", 18, 30}});
    EXPECT_THAT(warnings(goodRun(20)),
                ElementsAre("1 interval cut off at the end of the run, which has 20 volumes: "
                            "interval 5 (\"d\"), volumes 18 to 30",
                            "partial correlation of 3 nodes takes at least 4 volumes: interval 2 "
                            "(\"b\") has 3, interval 5 (\"d\") has 3"));
}

TEST_F(ComputeChecks, TellOfIntervalsBeyondTheRun)
{
    setIntervals({{"a", 1, 10}, {"b", 11, 21}, {"c", 20, 20}, {"d", 21, 30}, {"e", 40, 50}});
    Eigen::MatrixXf run = goodRun(20);
    EXPECT_THAT(
        warnings(run),
        ElementsAre(
            "1 interval cut off at the end of the run, which has 20 volumes: interval 2 (\"b\"), "
            "volumes 11 to 21",
            "2 intervals beyond the end of the run, which has 20 volumes, and without connections: "
            "interval 4 (\"d\"), volumes 21 to 30; interval 5 (\"e\"), volumes 40 to 50",
            "1 interval in which nodes have no connections, since their values do not change or "
            "are not finite: interval 3 (\"c\"): \"one\", \"two\", \"three\""));
}

TEST_F(ComputeChecks, TellOfNodesThatStandStillInAnIntervalOnly)
{
    setIntervals({{"a", 1, 10}, {"b", 11, 20}});
    Eigen::MatrixXf run = goodRun(20);
    run.row(1).head(10).setConstant(3);
    run.row(2).setConstant(5);
    EXPECT_THAT(
        warnings(run),
        ElementsAre("1 node with the same value in every volume: \"three\"; it has no connections",
                    "1 interval in which nodes have no connections, since their values do not "
                    "change or are not finite: interval 1 (\"a\"): \"two\""));
}

TEST_F(ComputeChecks, TakeInputOfNoSize)
{
    subject.setMeasure(2);
    EXPECT_THAT(warnings(Eigen::MatrixXf(0, 0)), ElementsAre());
    EXPECT_THAT(warnings(Eigen::MatrixXf(0, 9)), ElementsAre());
    EXPECT_THAT(warnings(Eigen::MatrixXf(3, 0)), ElementsAre());
    EXPECT_EQ(nodeFaults(subject, Eigen::MatrixXf(3, 0)).size(), 3U);
}

} // namespace
