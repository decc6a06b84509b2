// SPDX-License-Identifier: GPL-3.0-or-later
//
// The plugin of docs/plugin-example, loaded and run as the page on writing plugins tells. This
// program is named as the host and exports what the host exports.
#include "host/session/plugin_loader.h"
#include "tests/host/support/host_files.h"
#include "tests/host/support/listened_session.h"

#include <gmock/gmock.h>

namespace corvane
{

namespace
{

using testing::ElementsAre;
using testing::IsEmpty;

class PluginExample : public testing::Test, protected ListenedSession
{
protected:
    PluginExample()
    {
        writeVmr(folder.path("brain.vmr"), zeroVmr());
        workspace().openVmr(folder.path("brain.vmr"));
    }

    void link(const QByteArray &run)
    {
        putBytes(folder.path("run.vtc"), run);
        workspace().linkVtc(folder.path("run.vtc"));
    }
    void load(const VoiSet &vois)
    {
        writeVoiFile(folder.path("areas.voi"), vois);
        workspace().loadVois(folder.path("areas.voi"));
    }

    const TemporaryFolder folder;
    Plugin plugin{QStringLiteral(PLUGIN)};
};

} // namespace

TEST_F(PluginExample, IsListedWithItsNameAndAuthor)
{
    EXPECT_EQ(plugin.name(), QStringLiteral("VOI Means"));
    EXPECT_EQ(plugin.author(), QStringLiteral("<i>A. Researcher</i>"));
}

TEST_F(PluginExample, SaysTheMeanSignalOfEachVoi)
{
    link(smallVtcBytes());
    load(smallVoiSet());
    plugin.start();
    // Samples count up from -20 with the time first. The two voxels are places 0 and 11 of the
    // box, with the samples -20 to -17 and 24 to 27.
    EXPECT_THAT(log, ElementsAre("left hippocampus: 3.500000",
                                 "größte Windung \"M1\": no voxel inside the run",
                                 "empty: no voxel inside the run"));
    EXPECT_THAT(messages, IsEmpty());
}

TEST_F(PluginExample, ReadsSamplesOfEitherType)
{
    const VtcInfo info = smallVtcInfo(VtcInfo::Float);
    link(vtcBytes(info, numberedSamples<float>(info)));
    load(smallVoiSet());
    plugin.start();
    ASSERT_FALSE(log.empty());
    EXPECT_EQ(log.front(), "left hippocampus: 3.500000");
}

TEST_F(PluginExample, SaysWhatItNeeds)
{
    plugin.start();
    link(smallVtcBytes());
    plugin.start();
    VoiSet elsewhere = smallVoiSet();
    elsewhere.referenceSpace = 3;
    elsewhere.vois.resize(1);
    load(elsewhere);
    plugin.start();
    EXPECT_THAT(messages,
                ElementsAre("Open an anatomy, a functional run and volumes of interest first.",
                            "Open an anatomy, a functional run and volumes of interest first.",
                            "These volumes of interest are not in the voxels of the anatomy."));
    EXPECT_EQ(log, messages);
}

} // namespace corvane
