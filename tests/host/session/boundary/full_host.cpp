// SPDX-License-Identifier: GPL-3.0-or-later
//
// The plugin's side of the boundary in the host's process: this program is named as the host and
// exports what the host exports.
#include "host/session/host_functions.h"
#include "host/session/session.h"
#include "plugin/host_functions.h"
#include "tests/host/support/host_files.h"

namespace
{

template <typename Function>
HostAddress addressOf(Function *function)
{
    return reinterpret_cast<HostAddress>(function);
}

} // namespace

TEST(BoundaryInTheHost, BindsEveryFunctionThatTheHostOffersAndNoOther)
{
    ASSERT_TRUE(bindHostFunctions());
    const HostFunctionTable &table = hostFunctions();
    int bound = 0;
#define HOST_CALL(result, name, arguments)                                                         \
    EXPECT_EQ(addressOf(table.name), addressOf(&::name)) << #name;                                 \
    bound += table.name != nullptr ? 1 : 0;
#define HOST_NAME(name) EXPECT_EQ(table.name, nullptr) << #name;
#include "plugin/host_function_names.inc"
#undef HOST_CALL
#undef HOST_NAME
    EXPECT_EQ(bound, 21);
}

TEST(BoundaryInTheHost, BringsDataThroughTheTable)
{
    const corvane::TemporaryFolder folder;
    corvane::Session session;
    corvane::writeVmr(folder.path("brain.vmr"), corvane::zeroVmr());
    corvane::putBytes(folder.path("run.vtc"), corvane::smallVtcBytes(QStringLiteral("block.prt")));
    corvane::writeVoiFile(folder.path("rois.voi"), corvane::smallVoiSet());
    corvane::writePrtFile(folder.path("block.prt"), corvane::smallPrt());
    session.workspace().openVmr(folder.path("brain.vmr"));

    ASSERT_TRUE(bindHostFunctions());
    const HostFunctionTable &host = hostFunctions();
    int x = 0;
    int y = 0;
    int z = 0;
    EXPECT_NE(host.zqGetCurrentVMR(&x, &y, &z), nullptr);
    EXPECT_EQ(z, 256);
    ASSERT_EQ(host.zqLinkVTCToCurrentVMR(folder.path("run.vtc").toUtf8(), 1), 1);
    ASSERT_EQ(host.zqLoadVOIs(folder.path("rois.voi").toUtf8()), 1);
    VTCHeader vtc;
    ASSERT_EQ(host.zqGetHeaderOfVTCOfCurrentVMR(&vtc), 1);
    VOIRecord voi;
    const int *voxels = host.zqGetVOI(0, &voi);
    ASSERT_NE(voxels, nullptr);

    // The second voxel, (63, 55, 62), is lattice point (2, 1, 1); its volume 3.
    const int dimX = (vtc.xEnd - vtc.xStart) / vtc.resolution;
    const int dimXY = (vtc.yEnd - vtc.yStart) / vtc.resolution * dimX;
    const int i = (voxels[3] - vtc.xStart) / vtc.resolution;
    const int j = (voxels[4] - vtc.yStart) / vtc.resolution;
    const int k = (voxels[5] - vtc.zStart) / vtc.resolution;
    const int index = 3 + (k * dimXY + i + j * dimX) * vtc.nrOfVolumes;
    EXPECT_EQ(index, 47);
    EXPECT_EQ(host.zqGetVTCIntDataOfCurrentVMR()[index], 47 - 20);

    ProtocolHeader protocol;
    ASSERT_EQ(host.zqGetProtocol(&protocol), 1);
    EXPECT_EQ(protocol.conditionCount, 3);
}
