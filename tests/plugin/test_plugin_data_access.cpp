// SPDX-License-Identifier: GPL-3.0-or-later
//
// The plugin object's own members for the host data access: each does what the function of its name
// in plugin/host_data.h does, whose tests are in test_host_data.cpp.
#include "dataset/subject.h"
#include "plugin/tessera_plugin.h"
#include "tests/support/fake_host.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

using fake_host::Failure;
using testing::ElementsAre;

class PluginDataAccess : public testing::Test
{
protected:
    PluginDataAccess()
    {
        host.addVmr("/data/brain.vmr");
        host.addVmr("/data/other.vmr");
        fake_host::Vtc vtc = fake_host::makeVtc({{{50, 53}, {60, 63}, {70, 73}}}, 3, 4);
        vtc.linkProtocol("/data/task.prt");
        host.vtcs["/data/run.vtc"] = vtc;
        host.voiSets["/data/set.voi"].vois = {{"V1", {{50, 60, 70}}}, {"V2", {}}};
        fake_host::Protocol protocol;
        protocol.conditions = {{"A", {{1, 2}}}};
        host.protocols["/data/task.prt"] = protocol;
        subject.setName("Ann");
        subject.setVtcFile("/data/run.vtc");
        subject.setVoiFile("/data/set.voi");
        subject.setDocumentId(1);
    }

    fake_host::FakeHost host;
    Tessera_Plugin plugin;
    Subject subject;
};

TEST_F(PluginDataAccess, ListsTheDocuments)
{
    EXPECT_EQ(plugin.vmrDocuments(), (QHash<int, QString>{{0, "brain.vmr"}, {1, "other.vmr"}}));
}

TEST_F(PluginDataAccess, MakesADocumentTheCurrentOne)
{
    plugin.setCurrentDocument(1);
    EXPECT_THAT(host.calls, ElementsAre("zqSetAsCurrentDocument(1)"));
}

TEST_F(PluginDataAccess, LoadsASubject)
{
    EXPECT_TRUE(plugin.loadSubject(subject));
    EXPECT_EQ(subject.timeseries().size(), 2U);
    EXPECT_EQ(subject.emptyVois, QVector<int>{1});
    host.fail("zqLoadVOIs", Failure::Zero);
    EXPECT_FALSE(plugin.loadSubject(subject));
}

TEST_F(PluginDataAccess, ReadsTheNamesOfTheVois)
{
    EXPECT_EQ(plugin.readVOINames(subject), 2);
    EXPECT_EQ(subject.voiNames, (QStringList{"V1", "V2 (empty)"}));
    host.fail("zqGetVOIs", Failure::Zero);
    EXPECT_EQ(plugin.readVOINames(subject), 0);
}

TEST_F(PluginDataAccess, LoadsAProtocol)
{
    EXPECT_TRUE(plugin.loadProtocolFile(subject, "/data/task.prt"));
    EXPECT_EQ(subject.protocol().conditions.at(0).name, "A");
    EXPECT_FALSE(plugin.loadProtocolFile(subject, "/data/none.prt"));
}

TEST_F(PluginDataAccess, LinksTheProtocolOfTheRun)
{
    EXPECT_TRUE(plugin.linkVTCProtocol(subject));
    EXPECT_EQ(subject.protocol().conditions.at(0).name, "A");
    host.vtcs["/data/run.vtc"].header.linkedProtocolCount = 0;
    EXPECT_FALSE(plugin.linkVTCProtocol(subject));
}

TEST_F(PluginDataAccess, KnowsVoisOfOneMillimetre)
{
    EXPECT_TRUE(plugin.voiFileIsOneMillimetre("/data/set.voi"));
    host.voiSets["/data/set.voi"].resolution[2] = 2.0F;
    EXPECT_FALSE(plugin.voiFileIsOneMillimetre("/data/set.voi"));
}

} // namespace
