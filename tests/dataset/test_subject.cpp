// SPDX-License-Identifier: GPL-3.0-or-later
#include "dataset/subject.h"

#include <gtest/gtest.h>

#include <cstring>

namespace
{

template <typename Record>
bool isZero(const Record &record)
{
    const char zeros[sizeof record] = {};
    return std::memcmp(&record, zeros, sizeof record) == 0;
}

TEST(Subject, IsBornWithTheseDefaults)
{
    const Subject subject;
    EXPECT_EQ(subject.plugin, nullptr);
    EXPECT_EQ(subject.scheme().kind, 1);
    EXPECT_EQ(subject.scheme().voiIndex, -1);
    EXPECT_TRUE(subject.scheme().seedVois.isEmpty());
    EXPECT_EQ(subject.measure(), 1);
    EXPECT_EQ(subject.matrixValues(), 0);
    EXPECT_TRUE(subject.timeseries().empty());
    EXPECT_TRUE(subject.computeMst());
    EXPECT_EQ(subject.documentId(), -1);
    EXPECT_TRUE(subject.name().isEmpty());
    EXPECT_TRUE(subject.vtcFile().isEmpty());
    EXPECT_TRUE(subject.voiFile().isEmpty());
    EXPECT_TRUE(subject.prtFile.isEmpty());
    EXPECT_FALSE(subject.hasProtocol());
    EXPECT_FALSE(subject.protocolAutoloaded());
    EXPECT_TRUE(subject.voiNames.isEmpty());
    EXPECT_TRUE(subject.emptyVois.isEmpty());
    EXPECT_FALSE(subject.dataLoaded);
    EXPECT_TRUE(subject.editable());
    EXPECT_FALSE(subject.computed());
    EXPECT_TRUE(subject.protocol().conditions.empty());
    EXPECT_FALSE(subject.protocol().eventRelated);
    EXPECT_FALSE(subject.useProtocol());
    EXPECT_TRUE(subject.profileFlag);
    EXPECT_TRUE(isZero(subject.vtcHeader));
    EXPECT_TRUE(isZero(subject.voisHeader));
    EXPECT_TRUE(isZero(subject.voiRecord));
    EXPECT_TRUE(isZero(subject.protocolHeader));
    EXPECT_TRUE(subject.linkedProtocolFile().isEmpty());
}

TEST(Subject, IsCompleteWithNameAndBothFiles)
{
    Subject subject;
    EXPECT_FALSE(subject.isComplete());
    subject.setName("Ann");
    EXPECT_FALSE(subject.isComplete());
    subject.setVtcFile("a.vtc");
    EXPECT_FALSE(subject.isComplete());
    subject.setVoiFile("a.voi");
    EXPECT_TRUE(subject.isComplete());
    subject.setName(QString());
    EXPECT_FALSE(subject.isComplete());
}

TEST(Subject, DescribesItselfInFiveLines)
{
    Subject subject;
    EXPECT_EQ(subject.describe(), "  Name: \n   VTC: \n   VOI: \nLoaded: No\nNum TS: 0\n");
    subject.setName("%2 Ann");
    subject.setVtcFile("/a/b.vtc");
    subject.setVoiFile("/a/c.voi");
    subject.dataLoaded = true;
    subject.appendTimeseries(Eigen::MatrixXf::Zero(1, 1));
    EXPECT_EQ(subject.describe(),
              "  Name: %2 Ann\n   VTC: /a/b.vtc\n   VOI: /a/c.voi\nLoaded: Yes\nNum TS: 1\n");
}

TEST(Subject, ProtocolFileSaysThatThereIsOne)
{
    Subject subject;
    subject.setPrtFile("task.prt");
    EXPECT_TRUE(subject.hasProtocol());
    EXPECT_FALSE(subject.protocolAutoloaded());
    EXPECT_EQ(subject.prtFile, "task.prt");
}

TEST(Subject, CopiesDeeply)
{
    Subject original;
    original.appendTimeseries(Eigen::MatrixXf::Constant(2, 3, 1.0f));
    ConnectivityScheme scheme;
    scheme.kind = 2;
    scheme.voiIndex = 4;
    scheme.seedVois = {1, 2};
    original.setScheme(scheme);
    original.vtcHeader.nrOfVolumes = 77;
    SubjectProtocol protocol("p", 1, 1);
    protocol.conditions[0].name = "A";
    original.setProtocol(protocol);

    Subject copy = original;
    original.appendTimeseries(Eigen::MatrixXf::Zero(1, 1));
    protocol.conditions[0].name = "B";
    original.setProtocol(protocol);
    original.setScheme(ConnectivityScheme());
    EXPECT_EQ(copy.timeseries().size(), 1u);
    EXPECT_EQ(copy.scheme().kind, 2);
    EXPECT_EQ(copy.scheme().voiIndex, 4);
    EXPECT_EQ(copy.scheme().seedVois, (QVector<int>{1, 2}));
    EXPECT_EQ(copy.vtcHeader.nrOfVolumes, 77);
    EXPECT_EQ(copy.protocol().conditions.at(0).name, "A");
}

TEST(Subject, ProtocolKnowsItsNameUnitAndCount)
{
    const SubjectProtocol protocol("task", 2, 5);
    EXPECT_EQ(protocol.name, "task");
    EXPECT_EQ(protocol.timeUnit, 2);
    EXPECT_EQ(protocol.conditionCount, 5);
    EXPECT_FALSE(protocol.eventRelated);
    EXPECT_TRUE(protocol.conditions.empty());
}

TEST(DefaultProfile, IsOneForTheProcess)
{
    EXPECT_EQ(defaultProfile(), defaultProfile());
    EXPECT_TRUE(defaultProfile()->profileFlag);
    EXPECT_EQ(defaultProfile()->plugin, nullptr);
}

} // namespace
