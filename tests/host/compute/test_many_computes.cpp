// SPDX-License-Identifier: GPL-3.0-or-later
//
// The compute many times in one process. This program is named as the host and exports what the
// host exports.
#include "host/compute/compute.h"
#include "tests/host/support/host_files.h"
#include "tests/host/support/listened_session.h"

#include <functional>

namespace corvane
{

namespace
{

/// How many files the process has mapped from a folder. Empty where the system does not tell.
std::optional<int> mappedFilesOf(const QString &folder)
{
    QFile maps(QStringLiteral("/proc/self/maps"));
    if (!maps.open(QIODevice::ReadOnly))
        return std::nullopt;
    return maps.readAll().count(folder.toUtf8());
}

class ManyComputes : public testing::Test
{
protected:
    ManyComputes()
    {
        writeVmr(folder.path("one.vmr"), zeroVmr());
        putBytes(folder.path("run.vtc"), smallVtcBytes(QStringLiteral("block.prt")));
        writePrtFile(folder.path("block.prt"), smallPrt());
        writeVoiFile(folder.path("areas.voi"), smallVoiSet());
        request.anatomy = folder.path("one.vmr");
        request.vtc = folder.path("run.vtc");
        request.voi = folder.path("areas.voi");
        request.seeds = {0, 0};
    }

    const TemporaryFolder folder;
    ComputeRequest request;
};

} // namespace

TEST_F(ManyComputes, EachWithASessionOfItsOwnLeavesNothingBehind)
{
    const Session windows;
    Eigen::MatrixXf first;
    for (int n = 0; n < 1000; ++n) {
        Session session;
        request.useProtocol = n % 2 == 1;
        const ComputeResult result = compute(session, request);
        ASSERT_EQ(result.slices.size(), request.useProtocol ? 3u : 1u) << "compute " << n;
        if (n == 0)
            first = result.timeseries;
        ASSERT_EQ(result.timeseries.rows(), first.rows());
        ASSERT_EQ(result.timeseries.cols(), first.cols());
        ASSERT_EQ(result.timeseries, first) << "compute " << n;
        ASSERT_EQ(result.warnings.size(), 1) << result.warnings.join('\n').toStdString();
    }
    EXPECT_EQ(Session::current(), &windows);
    EXPECT_EQ(mappedFilesOf(folder.path()).value_or(0), 0);
}

TEST_F(ManyComputes, InOneSessionCloseTheirDocumentAndTellItsOtherListeners)
{
    ListenedSession host;
    Workspace &workspace = host.session.workspace();
    const int open = workspace.openVmr(request.anatomy);
    for (int n = 0; n < 3; ++n)
        compute(host.session, request);
    EXPECT_EQ(workspace.documentCount(), 4);
    for (int position = 1; position < workspace.documentCount(); ++position)
        EXPECT_EQ(workspace.documentType(position), ClosedDocument) << position;
    EXPECT_EQ(workspace.documentType(open), VmrDocument);
    EXPECT_FALSE(host.log.empty());
}

TEST_F(ManyComputes, ThatFailCloseTheirDocumentToo)
{
    ListenedSession host;
    request.seeds = {7};
    EXPECT_NE(errorOf([&] { compute(host.session, request); }), "no error");
    EXPECT_EQ(host.session.workspace().documentType(0), ClosedDocument);
}

TEST_F(ManyComputes, FailWithAMeasureThatThereIsNotAsInTheDialog)
{
    Session session;
    request.measure = static_cast<ConnectivityMeasure>(7);
    EXPECT_THROW(compute(session, request), std::bad_function_call);
}

} // namespace corvane
