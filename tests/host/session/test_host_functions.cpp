// SPDX-License-Identifier: GPL-3.0-or-later
//
// The functions for plugins and the workspace behind them, driven through files on disk.
#include "host/session/host_functions.h"
#include "host/session/host_version.h"
#include "host/session/session.h"
#include "tests/host/support/host_files.h"
#include "tests/host/support/listened_session.h"

#include <cstring>
#include <gmock/gmock.h>

namespace corvane
{

namespace
{

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// A record full of bytes that a function must overwrite.
template <typename Record>
Record dirty()
{
    Record record;
    std::memset(static_cast<void *>(&record), 0x5a, sizeof record);
    return record;
}

template <typename Record>
bool isZero(const Record &record)
{
    Record zero;
    std::memset(static_cast<void *>(&zero), 0, sizeof zero);
    return std::memcmp(&record, &zero, sizeof record) == 0;
}

} // namespace

/// A dataset in a folder, an empty workspace, and a log that is kept.
class HostFunctions : public testing::Test, protected ListenedSession
{
protected:
    HostFunctions()
    {
        writeVmr(folder.path("one.vmr"), zeroVmr());
        putBytes(folder.path("run.vtc"), smallVtcBytes());
        putBytes(folder.path("float.vtc"), floatVtc());
        putBytes(folder.path("linked.vtc"), smallVtcBytes(QStringLiteral("block.prt")));
        putBytes(folder.path("lost.vtc"), smallVtcBytes(QStringLiteral("lost.prt")));
        writeVoiFile(folder.path("rois.voi"), smallVoiSet());
        writePrtFile(folder.path("block.prt"), smallPrt());
        putBytes(folder.path("bad"), "bad");
    }

    static QByteArray floatVtc()
    {
        const VtcInfo info = smallVtcInfo(VtcInfo::Float);
        return vtcBytes(info, numberedSamples<float>(info));
    }

    QByteArray file(const char *name) const { return folder.path(name).toUtf8(); }
    void openVmr() { workspace().openVmr(folder.path("one.vmr")); }

    TemporaryFolder folder;
};

TEST_F(HostFunctions, TellTheVersionOfTheHost)
{
    int major = -1;
    int minor = -1;
    int third = -1;
    zqGetVersionOfCorvaneZQ(&major, &minor, &third);
    EXPECT_EQ(major, hostVersion[0]);
    EXPECT_EQ(minor, hostVersion[1]);
    EXPECT_EQ(third, hostVersion[2]);
    EXPECT_TRUE(major > 2 || (major == 2 && minor >= 8));
    EXPECT_GE(third, 0);
    zqGetVersionOfCorvaneZQ(nullptr, nullptr, nullptr);
}

TEST_F(HostFunctions, PassTextsOn)
{
    int shown = 0;
    QObject::connect(&session, &Session::logPaneAsked, [&shown] { ++shown; });
    zqLogText("\n Starting gr\xc3\xbc\xc3\x9f"
              "e");
    zqMessageBox("%1 needs a VMR");
    zqShowLogPane();
    EXPECT_THAT(log, ElementsAre("\n Starting gr\xc3\xbc\xc3\x9f"
                                 "e",
                                 "%1 needs a VMR"));
    EXPECT_THAT(messages, ElementsAre("%1 needs a VMR"));
    EXPECT_EQ(shown, 1);
    zqLogText(nullptr);
    zqMessageBox(nullptr);
}

TEST_F(HostFunctions, WriteToStandardErrorWhenNobodyListens)
{
    const Session unheard;
    testing::internal::CaptureStderr();
    zqLogText("one");
    zqMessageBox("two");
    zqShowLogPane();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "one\ntwo\n");
    EXPECT_THAT(log, IsEmpty());
}

TEST_F(HostFunctions, LetNoExceptionOut)
{
    QObject::connect(&session, &Session::logged,
                     [](const QString &) { throw std::runtime_error("no room for this line"); });
    QObject::connect(&session, &Session::messageShown, [](const QString &) { throw 7; });
    zqLogText("text");
    zqMessageBox("text");
    EXPECT_EQ(zqLoadVOIs(file("bad")), 0);
}

TEST_F(HostFunctions, WorkOnTheYoungestSessionOnly)
{
    openVmr();
    {
        ListenedSession inner;
        EXPECT_EQ(zqGetNumberOfDocsInWorkspace(), 0);
        inner.session.workspace().openVmr(folder.path("one.vmr"));
        inner.session.workspace().openVmr(folder.path("one.vmr"));
        EXPECT_EQ(zqGetNumberOfDocsInWorkspace(), 2);
        zqLogText("inside");
        EXPECT_THAT(inner.log, ElementsAre("inside"));
    }
    EXPECT_EQ(zqGetNumberOfDocsInWorkspace(), 1);
    zqLogText("outside");
    EXPECT_THAT(log, ElementsAre("outside"));
}

TEST_F(HostFunctions, FollowSessionsThatEndInAnyOrder)
{
    auto second = std::make_unique<Session>();
    const Session third;
    second.reset();
    EXPECT_EQ(Session::current(), &third);
}

TEST_F(HostFunctions, TellEveryListenerOfTheWorkspace)
{
    int first = 0;
    int second = 0;
    QObject::connect(&session.workspace(), &Workspace::changed, [&first] { ++first; });
    QObject::connect(&session.workspace(), &Workspace::changed, [&second] { ++second; });
    openVmr();
    EXPECT_EQ(zqLoadVOIs(file("bad")), 0);
    EXPECT_EQ(first, 2);
    EXPECT_EQ(second, 2);
}

/// Without windows and commands, as in another program's process.
TEST(WithoutASession, TheHostHasNothing)
{
    ASSERT_EQ(Session::current(), nullptr);
    EXPECT_EQ(zqGetNumberOfDocsInWorkspace(), 0);
    EXPECT_EQ(zqGetIDOfCurrentDocument(), -1);
    testing::internal::CaptureStderr();
    zqShowLogPane();
    zqMessageBox("said");
    EXPECT_EQ(zqLoadVOIs("/nowhere.voi"), 0);
    EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("said\n/nowhere.voi"));
}

TEST_F(HostFunctions, StartWithoutDocuments)
{
    EXPECT_EQ(zqGetNumberOfDocsInWorkspace(), 0);
    EXPECT_EQ(zqGetIDOfCurrentDocument(), -1);
    int x = 7;
    int y = 7;
    int z = 7;
    EXPECT_EQ(zqGetCurrentVMR(&x, &y, &z), nullptr);
    EXPECT_EQ(x, 0);
    EXPECT_EQ(y, 0);
    EXPECT_EQ(z, 0);
    auto header = dirty<VMRHeader>();
    zqGetMainHeaderOfCurrentVMR(&header);
    EXPECT_TRUE(isZero(header));
    EXPECT_NE(zqGetDocumentType(0), 3);
    EXPECT_NE(zqGetDocumentTypeName(0), nullptr);
    EXPECT_EQ(zqLinkVTCToCurrentVMR(file("run.vtc"), 1), 0);
    EXPECT_THAT(log, ElementsAre(folder.path("run.vtc").toStdString() +
                                 ": linking: found no current VMR, expected an open VMR that is "
                                 "the current document"));
}

TEST_F(HostFunctions, NumberDocumentsByPosition)
{
    const QString second = folder.path("\xe6\xb5\xb7\xe9\xa6\xac.vmr");
    ASSERT_TRUE(QFile::copy(folder.path("one.vmr"), second));
    EXPECT_EQ(workspace().openVmr(folder.path("one.vmr")), 0);
    EXPECT_EQ(workspace().openVmr(second), 1);
    EXPECT_EQ(zqGetNumberOfDocsInWorkspace(), 2);
    EXPECT_EQ(zqGetIDOfCurrentDocument(), 1);
    for (int position : {0, 1}) {
        EXPECT_EQ(zqGetDocumentType(position), 3);
        EXPECT_STREQ(zqGetDocumentTypeName(position), "VMR");
        zqSetAsCurrentDocument(position);
        EXPECT_EQ(zqGetIDOfCurrentDocument(), position);
        int x = 0;
        int y = 0;
        int z = 0;
        EXPECT_NE(zqGetCurrentVMR(&x, &y, &z), nullptr);
        EXPECT_THAT((std::vector<int>{x, y, z}), ElementsAre(256, 256, 256));
        auto header = dirty<VMRHeader>();
        zqGetMainHeaderOfCurrentVMR(&header);
        EXPECT_EQ(QString::fromUtf8(header.path), workspace().documentPath(position));
    }
    EXPECT_EQ(workspace().documentPath(1), second);
    EXPECT_NE(zqGetCurrentVMR(nullptr, nullptr, nullptr), nullptr);
    EXPECT_TRUE(log.empty());
}

TEST_F(HostFunctions, KeepThePositionOfAClosedDocument)
{
    openVmr();
    openVmr();
    openVmr();
    zqSetAsCurrentDocument(1);
    ASSERT_EQ(zqLinkVTCToCurrentVMR(file("run.vtc"), 1), 1);
    workspace().closeDocument(1);
    EXPECT_EQ(zqGetNumberOfDocsInWorkspace(), 3);
    EXPECT_EQ(zqGetDocumentType(0), 3);
    EXPECT_NE(zqGetDocumentType(1), 3);
    EXPECT_STREQ(zqGetDocumentTypeName(1), "closed");
    EXPECT_EQ(zqGetDocumentType(2), 3);
    EXPECT_EQ(zqGetIDOfCurrentDocument(), -1);
    EXPECT_EQ(zqGetVTCIntDataOfCurrentVMR(), nullptr);

    zqSetAsCurrentDocument(1);
    EXPECT_EQ(zqGetCurrentVMR(nullptr, nullptr, nullptr), nullptr);
    EXPECT_EQ(zqGetVTCIntDataOfCurrentVMR(), nullptr);
    zqSetAsCurrentDocument(2);
    EXPECT_EQ(zqGetIDOfCurrentDocument(), 2);
    EXPECT_NE(zqGetCurrentVMR(nullptr, nullptr, nullptr), nullptr);
    EXPECT_EQ(workspace().openVmr(folder.path("one.vmr")), 3);
    workspace().closeDocument(99);
    workspace().closeDocument(-1);
    EXPECT_EQ(zqGetNumberOfDocsInWorkspace(), 4);
}

TEST_F(HostFunctions, HaveNoCurrentDocumentOfANumberThatNeverWas)
{
    openVmr();
    for (int number : {-1, 1, 2147483647, -2147483647 - 1}) {
        zqSetAsCurrentDocument(number);
        EXPECT_EQ(zqGetIDOfCurrentDocument(), -1);
        EXPECT_EQ(zqGetCurrentVMR(nullptr, nullptr, nullptr), nullptr);
        EXPECT_NE(zqGetDocumentType(number), 3);
    }
}

TEST_F(HostFunctions, LinkAVtc)
{
    openVmr();
    ASSERT_EQ(zqLinkVTCToCurrentVMR(file("run.vtc"), 1), 1);
    auto header = dirty<VTCHeader>();
    ASSERT_EQ(zqGetHeaderOfVTCOfCurrentVMR(&header), 1);
    EXPECT_EQ(header.nrOfVolumes, 4);
    EXPECT_EQ(header.xStart, 57);
    EXPECT_EQ(header.xEnd, 66);
    EXPECT_EQ(header.yStart, 52);
    EXPECT_EQ(header.yEnd, 58);
    EXPECT_EQ(header.zStart, 59);
    EXPECT_EQ(header.zEnd, 65);
    EXPECT_EQ(header.resolution, 3);
    EXPECT_EQ(header.dataType, 1);
    EXPECT_EQ(header.linkedProtocolCount, 0);
    EXPECT_STREQ(header.linkedProtocolFile, "");
    for (std::uint8_t byte : header.opaque52)
        EXPECT_EQ(byte, 0);

    EXPECT_EQ(zqGetVTCFloatDataOfCurrentVMR(), nullptr);
    const short *samples = zqGetVTCIntDataOfCurrentVMR();
    ASSERT_NE(samples, nullptr);
    // Volume 2 of lattice point (1, 0, 1).
    EXPECT_EQ(samples[2 + 4 * (1 + 3 * (0 + 2 * 1))], 30 - 20);
    EXPECT_EQ(zqGetHeaderOfVTCOfCurrentVMR(nullptr), 0);
    EXPECT_TRUE(log.empty());
}

TEST_F(HostFunctions, LinkAVtcOfFloats)
{
    openVmr();
    ASSERT_EQ(zqLinkVTCToCurrentVMR(file("float.vtc"), 1), 1);
    VTCHeader header;
    ASSERT_EQ(zqGetHeaderOfVTCOfCurrentVMR(&header), 1);
    EXPECT_NE(header.dataType, 1);
    EXPECT_EQ(zqGetVTCIntDataOfCurrentVMR(), nullptr);
    ASSERT_NE(zqGetVTCFloatDataOfCurrentVMR(), nullptr);
    EXPECT_EQ(zqGetVTCFloatDataOfCurrentVMR()[47], 27.0F);
}

TEST_F(HostFunctions, LinkingLoadsTheProtocolThatTheVtcNames)
{
    openVmr();
    ASSERT_EQ(zqLinkVTCToCurrentVMR(file("linked.vtc"), 1), 1);
    VTCHeader header;
    ASSERT_EQ(zqGetHeaderOfVTCOfCurrentVMR(&header), 1);
    EXPECT_NE(header.linkedProtocolCount, 0);
    EXPECT_EQ(QString::fromLatin1(header.linkedProtocolFile), folder.path("block.prt"));
    ProtocolHeader protocol;
    ASSERT_EQ(zqGetProtocol(&protocol), 1);
    EXPECT_EQ(protocol.conditionCount, 3);
    EXPECT_TRUE(log.empty());
}

TEST_F(HostFunctions, LinkingClearsTheProtocolFirst)
{
    openVmr();
    ASSERT_EQ(zqLoadProtocol(file("block.prt")), 1);
    ASSERT_EQ(zqLinkVTCToCurrentVMR(file("run.vtc"), 1), 1);
    auto protocol = dirty<ProtocolHeader>();
    EXPECT_EQ(zqGetProtocol(&protocol), 0);
    EXPECT_TRUE(isZero(protocol));

    ASSERT_EQ(zqLoadProtocol(file("block.prt")), 1);
    EXPECT_EQ(zqLinkVTCToCurrentVMR(file("bad"), 1), 0);
    EXPECT_EQ(zqGetProtocol(&protocol), 0);
}

TEST_F(HostFunctions, SayThatANamedProtocolCannotBeRead)
{
    openVmr();
    ASSERT_EQ(zqLinkVTCToCurrentVMR(file("lost.vtc"), 1), 1);
    VTCHeader header;
    ASSERT_EQ(zqGetHeaderOfVTCOfCurrentVMR(&header), 1);
    EXPECT_NE(header.linkedProtocolCount, 0);
    ProtocolHeader protocol;
    EXPECT_EQ(zqGetProtocol(&protocol), 0);
    EXPECT_THAT(log, ElementsAre("The protocol that " + folder.path("lost.vtc").toStdString() +
                                 " names is not loaded. " + folder.path("lost.prt").toStdString() +
                                 ": opening: found No such file or directory, expected a readable "
                                 "file"));
}

TEST_F(HostFunctions, HaveNoVtcAfterAFailedLink)
{
    openVmr();
    ASSERT_EQ(zqLinkVTCToCurrentVMR(file("run.vtc"), 1), 1);
    EXPECT_EQ(zqLinkVTCToCurrentVMR(file("bad"), 1), 0);
    EXPECT_THAT(log, ElementsAre(folder.path("bad").toStdString() +
                                 ": line 1: found \"bad\", expected \"NRRD0004\" or \"NRRD0005\""));
    auto header = dirty<VTCHeader>();
    EXPECT_EQ(zqGetHeaderOfVTCOfCurrentVMR(&header), 0);
    EXPECT_TRUE(isZero(header));
    EXPECT_EQ(zqGetVTCIntDataOfCurrentVMR(), nullptr);
    EXPECT_EQ(zqGetVTCFloatDataOfCurrentVMR(), nullptr);
    EXPECT_EQ(zqLinkVTCToCurrentVMR(nullptr, 1), 0);
}

TEST_F(HostFunctions, GiveTheVtcOfTheCurrentVmrOnly)
{
    openVmr();
    openVmr();
    ASSERT_EQ(zqLinkVTCToCurrentVMR(file("run.vtc"), 1), 1);
    zqSetAsCurrentDocument(0);
    VTCHeader header;
    EXPECT_EQ(zqGetHeaderOfVTCOfCurrentVMR(&header), 0);
    EXPECT_EQ(zqGetVTCIntDataOfCurrentVMR(), nullptr);
    zqSetAsCurrentDocument(1);
    EXPECT_EQ(zqGetHeaderOfVTCOfCurrentVMR(&header), 1);
    EXPECT_NE(zqGetVTCIntDataOfCurrentVMR(), nullptr);
}

TEST_F(HostFunctions, ReplaceOneVtcByAnother)
{
    openVmr();
    ASSERT_EQ(zqLinkVTCToCurrentVMR(file("linked.vtc"), 1), 1);
    ASSERT_EQ(zqLinkVTCToCurrentVMR(file("float.vtc"), 1), 1);
    EXPECT_EQ(zqGetVTCIntDataOfCurrentVMR(), nullptr);
    EXPECT_NE(zqGetVTCFloatDataOfCurrentVMR(), nullptr);
    ProtocolHeader protocol;
    EXPECT_EQ(zqGetProtocol(&protocol), 0);
}

TEST_F(HostFunctions, LoadVois)
{
    ASSERT_EQ(zqLoadVOIs(file("rois.voi")), 1);
    auto header = dirty<VOIsHeader>();
    ASSERT_EQ(zqGetVOIs(&header), 1);
    EXPECT_EQ(header.voiCount, 3);
    EXPECT_EQ(header.referenceSpace, 0);
    EXPECT_EQ(header.resolutionX, 1.0F);
    EXPECT_EQ(header.resolutionY, 1.0F);
    EXPECT_EQ(header.resolutionZ, 1.0F);

    auto voi = dirty<VOIRecord>();
    const int *voxels = zqGetVOI(0, &voi);
    ASSERT_NE(voxels, nullptr);
    EXPECT_EQ(voi.voxelCount, 2);
    EXPECT_STREQ(voi.name, "left hippocampus");
    EXPECT_THAT(std::vector<int>(voxels, voxels + 6), ElementsAre(57, 52, 59, 63, 55, 62));
    EXPECT_EQ(zqGetVOI(0, &voi), voxels);

    ASSERT_NE(zqGetVOI(1, &voi), nullptr);
    EXPECT_STREQ(voi.name, "gr\xc3\xb6\xc3\x9fte Windung \"M1\"");
}

TEST_F(HostFunctions, GiveAnEmptyVoiItsRecordAndAPointer)
{
    ASSERT_EQ(zqLoadVOIs(file("rois.voi")), 1);
    auto voi = dirty<VOIRecord>();
    EXPECT_NE(zqGetVOI(2, &voi), nullptr);
    EXPECT_EQ(voi.voxelCount, 0);
    EXPECT_STREQ(voi.name, "empty");
}

TEST_F(HostFunctions, RefuseVoisThatAreNone)
{
    auto voi = dirty<VOIRecord>();
    EXPECT_EQ(zqGetVOI(0, &voi), nullptr);
    EXPECT_TRUE(isZero(voi));
    ASSERT_EQ(zqLoadVOIs(file("rois.voi")), 1);
    for (int index : {-1, 3, 2147483647}) {
        voi = dirty<VOIRecord>();
        EXPECT_EQ(zqGetVOI(index, &voi), nullptr);
        EXPECT_TRUE(isZero(voi));
    }
    EXPECT_NE(zqGetVOI(0, nullptr), nullptr);

    EXPECT_EQ(zqLoadVOIs(file("bad")), 0);
    ASSERT_EQ(log.size(), 1U);
    EXPECT_THAT(log[0], HasSubstr("bad: line 1, column "));
    auto header = dirty<VOIsHeader>();
    EXPECT_EQ(zqGetVOIs(&header), 0);
    EXPECT_TRUE(isZero(header));
    EXPECT_EQ(zqGetVOI(0, &voi), nullptr);
    EXPECT_EQ(zqLoadVOIs(nullptr), 0);
}

TEST_F(HostFunctions, LoadAProtocol)
{
    ASSERT_EQ(zqLoadProtocol(file("block.prt")), 1);
    auto header = dirty<ProtocolHeader>();
    ASSERT_EQ(zqGetProtocol(&header), 1);
    EXPECT_EQ(header.conditionCount, 3);
    EXPECT_EQ(header.timeUnit, 1);
    EXPECT_STREQ(header.name, "Bl\xf6"
                              "cke"); // Latin-1
    auto condition = dirty<ConditionRecord>();
    zqGetProtocolCondition(0, &condition);
    EXPECT_STREQ(condition.name, "rest");
    ASSERT_EQ(condition.intervalCount, 2);
    EXPECT_THAT(std::vector<int>(condition.from, condition.from + 2), ElementsAre(1, 4));
    EXPECT_THAT(std::vector<int>(condition.to, condition.to + 2), ElementsAre(2, 4));
    ConditionRecord second;
    zqGetProtocolCondition(1, &second);
    EXPECT_STREQ(second.name, "# task");
    ASSERT_EQ(second.intervalCount, 1);
    EXPECT_EQ(second.from[0], 3);
    EXPECT_EQ(second.to[0], 3);
    // The first record still points to its own intervals.
    EXPECT_EQ(condition.from[1], 4);
    zqGetProtocolCondition(2, &second);
    EXPECT_STREQ(second.name, "never");
    EXPECT_EQ(second.intervalCount, 0);
}

TEST_F(HostFunctions, RefuseConditionsThatAreNone)
{
    auto condition = dirty<ConditionRecord>();
    zqGetProtocolCondition(0, &condition);
    EXPECT_TRUE(isZero(condition));
    ASSERT_EQ(zqLoadProtocol(file("block.prt")), 1);
    for (int index : {-1, 3, 2147483647}) {
        condition = dirty<ConditionRecord>();
        zqGetProtocolCondition(index, &condition);
        EXPECT_TRUE(isZero(condition));
    }
    zqGetProtocolCondition(0, nullptr);
    EXPECT_EQ(zqLoadProtocol(file("bad")), 0);
    EXPECT_EQ(log.size(), 1U);
    ProtocolHeader header;
    EXPECT_EQ(zqGetProtocol(&header), 0);
    EXPECT_EQ(zqLoadProtocol(nullptr), 0);
}

TEST_F(HostFunctions, KeepRecordsOfAManyConditionedProtocol)
{
    Prt prt;
    for (int c = 1; c <= 500; ++c)
        prt.conditions.push_back({QString::number(c), {{c, c + 1}}});
    writePrtFile(folder.path("many.prt"), prt);
    ASSERT_EQ(zqLoadProtocol(file("many.prt")), 1);
    for (int c = 1; c <= 500; ++c) {
        ConditionRecord record;
        zqGetProtocolCondition(c - 1, &record);
        ASSERT_EQ(record.intervalCount, 1);
        EXPECT_EQ(record.from[0], c);
        EXPECT_EQ(record.to[0], c + 1);
    }
}

TEST_F(HostFunctions, CutNamesBetweenCharactersAndSayIt)
{
    VoiSet set;
    // 258 bytes fit one way, and the character that would end at byte 260 does not.
    const QString fits = QString(257, QLatin1Char('x')) + QChar(0xe4);
    const QString cut = QString(258, QLatin1Char('x')) + QChar(0xe4);
    const QString brain = QString(256, QLatin1Char('x')) + QString::fromUtf8("\xf0\x9f\xa7\xa0");
    set.vois = {{fits, 0, 0, 0, {}}, {cut, 0, 0, 0, {}}, {brain, 0, 0, 0, {}}};
    writeVoiFile(folder.path("long.voi"), set);
    ASSERT_EQ(zqLoadVOIs(file("long.voi")), 1);
    ASSERT_EQ(log.size(), 2U);
    EXPECT_EQ(log[0], "The name of VOI 2 is 260 bytes long, plugins get 258 of them: \"" +
                          cut.toStdString() + "\"");
    EXPECT_THAT(log[1], HasSubstr("The name of VOI 3 is 260 bytes long, plugins get 256 of them"));

    auto voi = dirty<VOIRecord>();
    zqGetVOI(0, &voi);
    EXPECT_EQ(QString::fromUtf8(voi.name), fits);
    zqGetVOI(1, &voi);
    EXPECT_EQ(QString::fromUtf8(voi.name), QString(258, QLatin1Char('x')));
    EXPECT_EQ(voi.name[259], '\0');
    zqGetVOI(2, &voi);
    EXPECT_EQ(QString::fromUtf8(voi.name), QString(256, QLatin1Char('x')));
    // Said once per load, not once per look.
    EXPECT_EQ(log.size(), 2U);
}

TEST_F(HostFunctions, WriteAQuestionMarkForWhatLatin1Lacks)
{
    Prt prt;
    prt.name = QString::fromUtf8("a\xf0\x9f\xa7\xa0z e\xcc\x81");
    prt.conditions = {{QString::fromUtf8("\xe2\x82\xac"), {}},
                      {QString(300, QChar(0xe9)), {}},
                      {QString(255, QChar(0xe9)), {}}};
    writePrtFile(folder.path("odd.prt"), prt);
    ASSERT_EQ(zqLoadProtocol(file("odd.prt")), 1);
    ProtocolHeader header;
    ASSERT_EQ(zqGetProtocol(&header), 1);
    EXPECT_STREQ(header.name, "a?z \xe9");
    ConditionRecord condition;
    zqGetProtocolCondition(0, &condition);
    EXPECT_STREQ(condition.name, "?");
    zqGetProtocolCondition(1, &condition);
    EXPECT_EQ(std::string(condition.name), std::string(255, '\xe9'));
    zqGetProtocolCondition(2, &condition);
    EXPECT_EQ(std::string(condition.name), std::string(255, '\xe9'));
    EXPECT_THAT(
        log, ElementsAre(HasSubstr("The name of the protocol has characters that Latin-1 lacks, "
                                   "plugins get '?' for them: \"a\xf0\x9f\xa7\xa0z e\xcc\x81\""),
                         HasSubstr("The name of condition 1 has characters that Latin-1 lacks"),
                         HasSubstr("The name of condition 2 is 300 bytes long, plugins get 255")));
}

TEST_F(HostFunctions, KeepTheEndOfAPathThatIsTooLong)
{
    // Folders of 200 characters each, so that the path is longer than its field.
    QString deep = folder.path();
    for (int level = 0; level < 3; ++level)
        deep += QLatin1Char('/') + QString(100, QChar(0xe4));
    ASSERT_TRUE(QDir().mkpath(deep));
    const QString vmr = deep + QStringLiteral("/brain.vmr");
    ASSERT_TRUE(QFile::copy(folder.path("one.vmr"), vmr));
    workspace().openVmr(vmr);
    auto header = dirty<VMRHeader>();
    zqGetMainHeaderOfCurrentVMR(&header);
    const QString path = QString::fromUtf8(header.path);
    EXPECT_TRUE(vmr.endsWith(path));
    EXPECT_TRUE(path.endsWith(QStringLiteral("/brain.vmr")));
    EXPECT_GE(std::strlen(header.path), 366U);
    EXPECT_LE(std::strlen(header.path), 367U);
    EXPECT_FALSE(path.contains(QChar::ReplacementCharacter));
    EXPECT_THAT(log, ElementsAre(HasSubstr("The path of the VMR is ")));

    log.clear();
    VtcInfo info = smallVtcInfo();
    info.linkedProtocol =
        QLatin1Char('/') + QString(600, QLatin1Char('p')) + QStringLiteral("/block.prt");
    putBytes(folder.path("far.vtc"), vtcBytes(info, numberedSamples<short>(info)));
    ASSERT_EQ(zqLinkVTCToCurrentVMR(file("far.vtc"), 1), 1);
    VTCHeader vtc;
    ASSERT_EQ(zqGetHeaderOfVTCOfCurrentVMR(&vtc), 1);
    EXPECT_EQ(std::string(vtc.linkedProtocolFile), std::string(513, 'p') + "/block.prt");
    ASSERT_EQ(log.size(), 2U);
    EXPECT_THAT(log[0], HasSubstr("The path of the linked protocol is 611 bytes long, plugins get "
                                  "523 of them"));
    EXPECT_THAT(log[1], HasSubstr("names is not loaded"));
}

TEST_F(HostFunctions, TakePathsAsUtf8)
{
    openVmr();
    const char *name = "L\xc3\xa4ufe \xe6\xb5\xb7\xe9\xa6\xac";
    const QString base = folder.path(name);
    ASSERT_TRUE(QFile::copy(folder.path("run.vtc"), base + QStringLiteral(".vtc")));
    ASSERT_TRUE(QFile::copy(folder.path("rois.voi"), base + QStringLiteral(".voi")));
    ASSERT_TRUE(QFile::copy(folder.path("block.prt"), base + QStringLiteral(".prt")));
    EXPECT_EQ(zqLinkVTCToCurrentVMR(base.toUtf8() + ".vtc", 1), 1);
    EXPECT_EQ(zqLoadVOIs(base.toUtf8() + ".voi"), 1);
    EXPECT_EQ(zqLoadProtocol(base.toUtf8() + ".prt"), 1);
    EXPECT_TRUE(log.empty());
}

TEST_F(HostFunctions, OpenAnatomiesOfOtherFormatsThroughTheOpener)
{
    const QString other = folder.path("bad");
    EXPECT_EQ(errorOf([&] { workspace().openVmr(other); }),
              other.toStdString() +
                  ": opening: found a file that does not end in \".vmr\", expected a .vmr (this "
                  "program was built without other formats)");
    EXPECT_EQ(workspace().documentCount(), 0);

    std::vector<QString> opened;
    const ListenedSession withOpener([&opened](const QString &path) {
        opened.push_back(path);
        return zeroVmr(Vmr::UShort);
    });
    EXPECT_EQ(workspace().openVmr(other), 0);
    EXPECT_THAT(opened, ElementsAre(other));
    ASSERT_NE(workspace().currentVmr(), nullptr);
    EXPECT_EQ(workspace().currentVmr()->type, Vmr::UShort);
    // A .vmr is the host's own, in any case of its letters.
    ASSERT_TRUE(QFile::copy(folder.path("one.vmr"), folder.path("TWO.VMR")));
    EXPECT_EQ(workspace().openVmr(folder.path("TWO.VMR")), 1);
    EXPECT_EQ(opened.size(), 1U);
}

TEST_F(HostFunctions, KeepTheCurrentDocumentWhenOneCannotBeOpened)
{
    openVmr();
    ASSERT_TRUE(QFile::copy(folder.path("bad"), folder.path("bad.vmr")));
    EXPECT_NE(errorOf([&] { workspace().openVmr(folder.path("bad.vmr")); }), "no error");
    EXPECT_EQ(zqGetNumberOfDocsInWorkspace(), 1);
    EXPECT_EQ(zqGetIDOfCurrentDocument(), 0);
}

} // namespace corvane
