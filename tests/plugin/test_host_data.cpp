// SPDX-License-Identifier: GPL-3.0-or-later
#include "dataset/plugin_settings.h"
#include "dataset/subject.h"
#include "plugin/host_data.h"
#include "plugin/host_functions.h"
#include "plugin/host_log.h"
#include "tests/support/fake_host.h"

#include <QStringList>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

namespace
{

using fake_host::Failure;
using testing::ElementsAre;
using testing::IsEmpty;

const char *const vmrRequired = "This plugin requires a VMR to operate. Make sure that a VMR is "
                                "open and that its window is selected.";
const char *const loading = "\n** Loading subject data: Ann...";

/// Sample that names its place: t + 10 i + 100 j + 1000 k.
float place(int i, int j, int k, int t)
{
    return static_cast<float>(t + 10 * i + 100 * j + 1000 * k);
}

/// A host with one VMR, a VTC of 4 x 3 x 2 voxels of 3 mm from (57, 52, 59), and two VOIs.
class HostData : public testing::Test
{
protected:
    HostData()
    {
        document = host.addVmr("/data/brain.vmr");
        host.vtcs["/data/run.vtc"] =
            fake_host::makeVtc({{{57, 69}, {52, 61}, {59, 65}}}, 3, 5, 2, place);
        host.voiSets["/data/set.voi"].vois = {{"V1", {{57, 52, 59}, {66, 58, 62}}},
                                              {"V2", {{60, 52, 59}}}};
        fake_host::Protocol protocol;
        protocol.name = "task";
        protocol.conditions = {{"A", {{1, 2}, {4, 5}}}, {"B", {{3, 3}}}};
        host.protocols["/data/task.prt"] = protocol;
        subject.setName("Ann");
        subject.setDocumentId(document);
        subject.setVtcFile("/data/run.vtc");
        subject.setVoiFile("/data/set.voi");
    }

    fake_host::Vtc &vtc() { return host.vtcs["/data/run.vtc"]; }
    std::vector<fake_host::Voi> &vois() { return host.voiSets["/data/set.voi"].vois; }

    fake_host::FakeHost host;
    int document = 0;
    Subject subject;
};

// Listing the documents

TEST_F(HostData, DocumentsAreTheVmrsByIdWithTheirBareNames)
{
    host.documents.push_back({"/data/run.fmr", 1, {64, 64, 30}});
    host.addVmr("/elsewhere/näme.vmr");
    const QHash<int, QString> documents = host_data::vmrDocuments();
    EXPECT_EQ(documents,
              (QHash<int, QString>{{0, "brain.vmr"}, {2, QString::fromUtf8("näme.vmr")}}));
    EXPECT_EQ(host.currentDocument, 2);
    EXPECT_THAT(host.calls,
                ElementsAre("zqGetNumberOfDocsInWorkspace()", "zqGetDocumentType(0)",
                            "zqGetDocumentTypeName(0)", "zqSetAsCurrentDocument(0)",
                            "zqGetIDOfCurrentDocument()", "zqGetMainHeaderOfCurrentVMR()",
                            "zqGetDocumentType(1)", "zqGetDocumentTypeName(1)",
                            "zqGetDocumentType(2)", "zqGetDocumentTypeName(2)",
                            "zqSetAsCurrentDocument(2)", "zqGetIDOfCurrentDocument()",
                            "zqGetMainHeaderOfCurrentVMR()"));
}

TEST_F(HostData, DocumentsOfEqualIdReplaceEachOther)
{
    host.addVmr("/data/second.vmr");
    host.fail("zqGetIDOfCurrentDocument", Failure::Zero);
    EXPECT_EQ(host_data::vmrDocuments(), (QHash<int, QString>{{0, "second.vmr"}}));
}

TEST_F(HostData, DocumentsOfAnEmptyWorkspaceAreNone)
{
    host.documents.clear();
    EXPECT_TRUE(host_data::vmrDocuments().isEmpty());
    EXPECT_THAT(host.calls, ElementsAre("zqGetNumberOfDocsInWorkspace()"));
}

TEST_F(HostData, SetCurrentDocumentPassesTheId)
{
    host_data::setCurrentDocument(7);
    EXPECT_THAT(host.calls, ElementsAre("zqSetAsCurrentDocument(7)"));
}

// Loading a subject

TEST_F(HostData, LoadCopiesEachVoxelsSeriesInTheFilesOrder)
{
    ASSERT_TRUE(subject.load());
    EXPECT_TRUE(subject.dataLoaded);
    const std::vector<Eigen::MatrixXf> series = subject.timeseries();
    ASSERT_EQ(series.size(), 2u);
    Eigen::MatrixXf first(2, 5);
    first << 0, 1, 2, 3, 4, 1230, 1231, 1232, 1233, 1234;
    EXPECT_EQ(series[0], first);
    Eigen::MatrixXf second(1, 5);
    second << 10, 11, 12, 13, 14;
    EXPECT_EQ(series[1], second);
    EXPECT_THAT(host.log, ElementsAre(loading));
    EXPECT_THAT(host.messages, IsEmpty());
}

TEST_F(HostData, LoadCountsWholeVtcVoxelsInABoxThatEndsWithinOne)
{
    // 14, 11 and 8 voxels of the VMR: 4 x 3 x 2 whole ones, and two thirds of one on each axis.
    vtc() = fake_host::makeVtc({{{57, 71}, {52, 63}, {59, 67}}}, 3, 5, 2, place);
    vois() = {{"inside", {{57, 52, 59}, {66, 58, 62}, {60, 55, 62}, {63, 52, 62}}},
              {"beyond", {{69, 52, 59}, {57, 61, 59}, {57, 52, 65}}}};
    ASSERT_TRUE(subject.load());
    const std::vector<Eigen::MatrixXf> series = subject.timeseries();
    EXPECT_EQ(series.at(0).col(4), (Eigen::Vector4f(4, 1234, 1114, 1024)));
    EXPECT_EQ(series.at(1), Eigen::MatrixXf::Zero(3, 5));
}

TEST_F(HostData, LoadAsksTheHostInThisOrder)
{
    subject.load();
    EXPECT_THAT(host.calls,
                ElementsAre("zqLogText()", "zqSetAsCurrentDocument(0)", "zqGetCurrentVMR()",
                            "zqLinkVTCToCurrentVMR(/data/run.vtc, 1)",
                            "zqGetHeaderOfVTCOfCurrentVMR()", "zqLoadVOIs(/data/set.voi)",
                            "zqGetVOIs()", "zqGetVTCFloatDataOfCurrentVMR()", "zqGetVOI(0)",
                            "zqGetVOI(0)", "zqGetVOI(1)", "zqGetVOI(1)"));
}

TEST_F(HostData, LoadTakesIntegersByValue)
{
    vtc() = fake_host::makeVtc({{{57, 69}, {52, 61}, {59, 65}}}, 3, 5, 1,
                               [](int, int, int, int t) { return t == 1 ? -3.0f : 32767.0f; });
    ASSERT_TRUE(subject.load());
    EXPECT_EQ(subject.timeseries()[0](0, 1), -3.0f);
    EXPECT_EQ(subject.timeseries()[0](0, 0), 32767.0f);
    EXPECT_EQ(host.count("zqGetVTCIntDataOfCurrentVMR"), 1);
    EXPECT_EQ(host.count("zqGetVTCFloatDataOfCurrentVMR"), 0);
}

TEST_F(HostData, LoadTakesAnyOtherDataTypeForFloats)
{
    for (const int type : {0, 2, 3, -1}) {
        vtc().header.dataType = type;
        Subject other = subject;
        ASSERT_TRUE(other.load()) << type;
        EXPECT_EQ(other.timeseries()[1](0, 0), 10.0f) << type;
    }
    EXPECT_EQ(host.count("zqGetVTCIntDataOfCurrentVMR"), 0);
}

TEST_F(HostData, PathsGoToTheHostAsUtf8)
{
    const std::string greek = "/data/\xCE\xB1 \xE6\xB5\xB7";
    host.vtcs[greek + ".vtc"] = vtc();
    host.vtcs[greek + ".vtc"].linkProtocol("/data/task.prt");
    host.voiSets[greek + ".voi"].vois = vois();
    host.protocols[greek + ".prt"] = host.protocols["/data/task.prt"];
    subject.setVtcFile(QString::fromStdString(greek + ".vtc"));
    subject.setVoiFile(QString::fromStdString(greek + ".voi"));
    EXPECT_TRUE(subject.linkProtocol());
    EXPECT_TRUE(subject.load());
    EXPECT_EQ(subject.voiCount(true), 2);
    EXPECT_THAT(host.calls, testing::Contains("zqLinkVTCToCurrentVMR(" + greek + ".vtc, 1)"));
    EXPECT_THAT(host.calls, testing::Contains("zqLoadVOIs(" + greek + ".voi)"));
}

TEST_F(HostData, LoadGivesVoiWithoutVoxelsOneRowOfZeros)
{
    vois().insert(vois().begin() + 1, {"nothing", {}});
    ASSERT_TRUE(subject.load());
    ASSERT_EQ(subject.timeseries().size(), 3u);
    EXPECT_EQ(subject.timeseries()[1], Eigen::MatrixXf::Zero(1, 5));
    EXPECT_EQ(subject.emptyVois, QVector<int>{1});
    EXPECT_EQ(subject.timeseries()[2](0, 0), 10.0f);
}

TEST_F(HostData, LoadLeavesOutVoiThatTheHostDoesNotGive)
{
    vois().insert(vois().begin(), {"refused", {{57, 52, 59}}, false});
    ASSERT_TRUE(subject.load());
    ASSERT_EQ(subject.timeseries().size(), 2u);
    EXPECT_EQ(subject.timeseries()[0].rows(), 2);
    EXPECT_THAT(host.log, ElementsAre(loading));
}

TEST_F(HostData, LoadLeavesOutVoiThatVanishesBetweenTheTwoCalls)
{
    host.fail("zqGetVOI", Failure::Zero, 2);
    ASSERT_TRUE(subject.load());
    ASSERT_EQ(subject.timeseries().size(), 1u);
    EXPECT_EQ(subject.timeseries()[0](0, 0), 10.0f);
}

TEST_F(HostData, LoadOfNoVoisIsTrueAndEmpty)
{
    vois().clear();
    EXPECT_TRUE(subject.load());
    EXPECT_TRUE(subject.timeseries().empty());
}

TEST_F(HostData, LoadTwiceAppends)
{
    vois().push_back({"nothing", {}});
    subject.load();
    subject.load();
    EXPECT_EQ(subject.timeseries().size(), 6u);
    EXPECT_EQ(subject.emptyVois, (QVector<int>{2, 2}));
}

struct Coordinate {
    int vmr;
    int start;
    int resolution;
    int vtc; ///< expected voxel, -1 outside
};

class Coordinates : public HostData, public testing::WithParamInterface<Coordinate>
{
};

TEST_P(Coordinates, AreRoundedWithHalvesUpward)
{
    const Coordinate c = GetParam();
    const int end = c.start + 30 * c.resolution;
    vtc() =
        fake_host::makeVtc({{{c.start, end}, {0, c.resolution}, {0, c.resolution}}}, c.resolution,
                           1, 2, [](int i, int, int, int) { return static_cast<float>(i + 1); });
    vois() = {{"V", {{c.vmr, 0, 0}}}};
    ASSERT_TRUE(subject.load());
    EXPECT_EQ(subject.timeseries()[0](0, 0), static_cast<float>(c.vtc + 1));
}

INSTANTIATE_TEST_SUITE_P(HostData, Coordinates,
                         testing::Values(Coordinate{120, 57, 3, 21}, Coordinate{57, 57, 3, 0},
                                         Coordinate{58, 57, 3, 0}, Coordinate{59, 57, 3, 1},
                                         // -0.5 goes to 0, -1.5 to -1
                                         Coordinate{49, 50, 2, 0}, Coordinate{47, 50, 2, -1},
                                         Coordinate{51, 50, 2, 1}, Coordinate{48, 50, 2, -1},
                                         Coordinate{139, 50, 3, -1}, Coordinate{138, 50, 3, 29},
                                         Coordinate{std::numeric_limits<int>::max(), 50, 3, -1},
                                         Coordinate{std::numeric_limits<int>::min(), 50, 3, -1}));

TEST_F(HostData, LoadConvertsCoordinatesOfOtherReferenceSpaces)
{
    // (a, b, c) stands for (128 - b, 128 - c, 128 - a).
    for (const int space : {3, 4}) {
        host.voiSets["/data/set.voi"].referenceSpace = space;
        vois() = {{"V", {{128 - 62, 128 - 66, 128 - 58}}}};
        Subject converted = subject;
        ASSERT_TRUE(converted.load());
        EXPECT_EQ(converted.timeseries()[0](0, 0), place(3, 2, 1, 0));
    }
    host.voiSets["/data/set.voi"].referenceSpace = 2;
    vois() = {{"V", {{66, 58, 62}}}};
    ASSERT_TRUE(subject.load());
    EXPECT_EQ(subject.timeseries()[0](0, 0), place(3, 2, 1, 0));
}

TEST_F(HostData, LoadTakesVoxelsOutsideTheBoxAsZeroAndSaysHowMany)
{
    vois() = {{"half out",
               {{56, 52, 59}, {0, 0, 0}, {60, 52, 59}, {69, 52, 59}, {66, 61, 59}, {66, 58, 65}}},
              {"inside", {{57, 52, 59}}},
              {"out", {{300, -4, 0}}}};
    ASSERT_TRUE(subject.load());
    const Eigen::MatrixXf first = subject.timeseries()[0];
    EXPECT_EQ(first.row(0), (Eigen::RowVectorXf(5) << 0, 1, 2, 3, 4).finished());
    EXPECT_TRUE(first.row(1).isZero());
    EXPECT_EQ(first(2, 0), 10.0f);
    EXPECT_TRUE(first.bottomRows(3).isZero());
    EXPECT_TRUE(subject.timeseries()[2].isZero());
    EXPECT_THAT(
        host.log,
        ElementsAre(loading,
                    "Plugin> 4 of 6 voxels lie outside the VTC and count as 0 in VOI half out",
                    "Plugin> 1 of 1 voxels lie outside the VTC and count as 0 in VOI out"));
}

struct LoadFailure {
    const char *function;
    Failure failure;
    const char *line; ///< the last log line; empty: none
    const char *box;  ///< the message box; empty: none
};

class LoadFailures : public HostData, public testing::WithParamInterface<LoadFailure>
{
};

TEST_P(LoadFailures, EndWithFalseAndTheirWords)
{
    const LoadFailure f = GetParam();
    subject.dataLoaded = true;
    host.fail(f.function, f.failure);
    EXPECT_FALSE(subject.load());
    EXPECT_FALSE(subject.dataLoaded);
    EXPECT_TRUE(subject.timeseries().empty());
    if (*f.line == '\0')
        EXPECT_THAT(host.log, ElementsAre(loading));
    else
        EXPECT_THAT(host.log, ElementsAre(loading, f.line));
    if (*f.box == '\0')
        EXPECT_THAT(host.messages, IsEmpty());
    else
        EXPECT_THAT(host.messages, ElementsAre(f.box));
}

const char *const vtcNotLoaded = "Plugin> Failed to load VTC file. Please retry.";
const char *const vtcTrouble = "Plugin> Trouble with VTC file. Please retry.";
const char *const voiNotLoaded = "Plugin> Could not load VOI file. Please retry.";
const char *const voiTrouble = "Plugin>  Trouble with VOI. Please retry.";
const char *const prtTrouble = "Plugin> Trouble with PRT file. Please retry.";

INSTANTIATE_TEST_SUITE_P(
    HostData, LoadFailures,
    testing::Values(LoadFailure{"zqGetCurrentVMR", Failure::Zero, "", vmrRequired},
                    LoadFailure{"zqLinkVTCToCurrentVMR", Failure::Zero, vtcNotLoaded, ""},
                    LoadFailure{"zqGetHeaderOfVTCOfCurrentVMR", Failure::Zero, vtcTrouble, ""},
                    LoadFailure{"zqGetHeaderOfVTCOfCurrentVMR", Failure::ZeroedRecord, vtcTrouble,
                                ""},
                    LoadFailure{"zqLoadVOIs", Failure::Zero, voiNotLoaded, ""},
                    LoadFailure{"zqGetVOIs", Failure::Zero, voiTrouble, ""},
                    LoadFailure{"zqGetVTCFloatDataOfCurrentVMR", Failure::Zero, vtcTrouble, ""}));

TEST_F(HostData, LoadOfZeroedVoiHeaderHasNoVois)
{
    host.fail("zqGetVOIs", Failure::ZeroedRecord);
    EXPECT_TRUE(subject.load());
    EXPECT_TRUE(subject.timeseries().empty());
}

class BadHeader : public HostData, public testing::WithParamInterface<void (*)(VTCHeader &)>
{
};

TEST_P(BadHeader, IsTroubleWithTheVtc)
{
    GetParam()(vtc().header);
    EXPECT_FALSE(subject.load());
    EXPECT_THAT(host.log, ElementsAre(loading, vtcTrouble));
}

INSTANTIATE_TEST_SUITE_P(HostData, BadHeader,
                         testing::Values([](VTCHeader &h) { h.resolution = 0; },
                                         [](VTCHeader &h) { h.resolution = -3; },
                                         [](VTCHeader &h) { h.nrOfVolumes = 0; },
                                         [](VTCHeader &h) { h.nrOfVolumes = -1; },
                                         [](VTCHeader &h) { h.xEnd = h.xStart; },
                                         [](VTCHeader &h) { h.yEnd = h.yStart + 2; },
                                         [](VTCHeader &h) { h.zEnd = h.zStart - 9; },
                                         [](VTCHeader &h) {
                                             h.xStart = std::numeric_limits<int>::max();
                                             h.xEnd = std::numeric_limits<int>::min();
                                         }));

TEST_F(HostData, LoadKeepsWhatItReadBeforeLaterFailure)
{
    vois().push_back({"V3", {{57, 52, 59}}});
    subject.load();
    host.fail("zqLinkVTCToCurrentVMR", Failure::Zero);
    EXPECT_FALSE(subject.load());
    EXPECT_EQ(subject.timeseries().size(), 3u);
}

TEST_F(HostData, LongNameIsCutAtCharacterBoundaryOfTheLogLine)
{
    subject.setName(QString(10000, QChar(0x00e4)));
    subject.load();
    const std::string &line = host.log.front();
    EXPECT_LT(line.size(), 256u);
    EXPECT_GT(line.size(), 250u);
    EXPECT_FALSE(QString::fromStdString(line).contains(QChar::ReplacementCharacter));
}

TEST_F(HostData, LogTextsAreCutBeforeAnIncompleteCharacterOnly)
{
    // The character begins so that it ends before, at, and behind the last byte of the buffer.
    for (const std::string character :
         {"\xC3\xA4", "\xE2\x82\xAC", "\xF0\x9F\xA7\xA0"}) { // of two, three and four bytes
        for (std::size_t before = 249; before < 256; ++before) {
            host.forgetCalls();
            const std::string text = std::string(before, 'x') + character + "yyyyyy";
            logToHost("%s", text.c_str());
            const bool fits = before + character.size() <= 255;
            EXPECT_EQ(host.log.back(), text.substr(0, fits ? 255 : before));
        }
    }
    host.forgetCalls();
    logToHost("%s", std::string(400, 'y').c_str());
    EXPECT_EQ(host.log.back(), std::string(255, 'y'));
}

TEST_F(HostData, LogTextsOfBytesWithoutACharacterAreCutAtTheirEnd)
{
    logToHost("%s", std::string(400, '\x80').c_str());
    EXPECT_EQ(host.log.back(), std::string(255, '\x80'));
}

// VOI names

TEST_F(HostData, VoiNamesSayWhichVoisAreEmpty)
{
    vois() = {{"links", {{1, 2, 3}}}, {"nichts", {}}, {"gr\xC3\xBCn", {{1, 2, 3}}}};
    EXPECT_EQ(subject.voiCount(true), 3);
    EXPECT_EQ(subject.voiNames,
              (QStringList{"links", "nichts (empty)", QString::fromUtf8("gr\xC3\xBCn")}));
    EXPECT_EQ(host.count("zqLoadVOIs"), 1);
}

TEST_F(HostData, VoiNamesReplaceThoseBefore)
{
    EXPECT_EQ(subject.voiCount(true), 2);
    EXPECT_EQ(subject.voiCount(true), 2);
    EXPECT_EQ(subject.voiNames, (QStringList{"V1", "V2"}));
    vois() = {{"alone", {{1, 2, 3}}}};
    EXPECT_EQ(subject.voiCount(true), 1);
    EXPECT_EQ(subject.voiNames, QStringList{"alone"});
}

TEST_F(HostData, VoiThatTheHostDoesNotGiveHasNoNameOfAnother)
{
    vois() = {{"links", {{1, 2, 3}}}, {"rechts", {{1, 2, 3}}, false}, {"oben", {{1, 2, 3}}}};
    EXPECT_EQ(subject.voiCount(true), 3);
    EXPECT_EQ(subject.voiNames, (QStringList{"links", " (empty)", "oben"}));
}

TEST_F(HostData, VoiCountWithSeedsDoesNotTouchTheHost)
{
    ConnectivityScheme scheme;
    scheme.seedVois = {1, 0, 1};
    subject.setScheme(scheme);
    EXPECT_EQ(subject.voiCount(false), 3);
    EXPECT_THAT(host.calls, IsEmpty());
    EXPECT_EQ(subject.voiCount(true), 2);
    EXPECT_THAT(host.calls, testing::Not(IsEmpty()));
}

TEST_F(HostData, VoiCountWithoutSeedsAsksTheHost)
{
    EXPECT_EQ(subject.voiCount(false), 2);
    EXPECT_EQ(host.count("zqGetVOIs"), 1);
}

TEST_F(HostData, VoiCountWithoutVoiFileTouchesNothing)
{
    subject.setVoiFile(QString());
    EXPECT_EQ(subject.voiCount(true), 0);
    EXPECT_EQ(subject.voiCount(false), 0);
    EXPECT_THAT(host.calls, IsEmpty());
}

TEST_F(HostData, VoiNamesSurviveHostThatFails)
{
    subject.voiCount(true);
    host.fail("zqLoadVOIs", Failure::Zero, 1);
    EXPECT_EQ(subject.voiCount(true), 0);
    host.fail("zqGetVOIs", Failure::Zero, 1);
    EXPECT_EQ(subject.voiCount(true), 0);
    EXPECT_EQ(subject.voiNames, (QStringList{"V1", "V2"}));
    EXPECT_THAT(host.log, ElementsAre(voiNotLoaded, voiTrouble));
}

TEST_F(HostData, VoiLabelsFollowTheSeeds)
{
    subject.voiCount(true);
    EXPECT_EQ(subject.voiLabels(true), (QStringList{"V1", "V2"}));
    EXPECT_EQ(subject.voiLabels(false), (QStringList{"V1", "V2"}));
    ConnectivityScheme scheme;
    scheme.seedVois = {1, 0, 7};
    subject.setScheme(scheme);
    EXPECT_EQ(subject.voiLabels(false), (QStringList{"V2", "V1", "7"}));
    EXPECT_EQ(subject.voiLabels(true), (QStringList{"V1", "V2"}));
}

// Resolution of a VOI file

TEST_F(HostData, VoiFileIsOneMillimetreOnlyWhenEachAxisIs)
{
    EXPECT_TRUE(host_data::voiFileIsOneMillimetre("/data/set.voi"));
    for (std::size_t axis = 0; axis < 3; ++axis) {
        for (const float size : {2.0f, 0.999999f, 0.0f, std::numeric_limits<float>::quiet_NaN()}) {
            host.voiSets["/data/set.voi"].resolution = {1.0f, 1.0f, 1.0f};
            host.voiSets["/data/set.voi"].resolution[axis] = size;
            EXPECT_FALSE(host_data::voiFileIsOneMillimetre("/data/set.voi")) << axis << " " << size;
        }
    }
    EXPECT_THAT(host.log, IsEmpty());
}

TEST_F(HostData, VoiFileOfHostThatFailsIsNotOneMillimetre)
{
    EXPECT_FALSE(host_data::voiFileIsOneMillimetre("/data/missing.voi"));
    host.fail("zqGetVOIs", Failure::Zero);
    EXPECT_FALSE(host_data::voiFileIsOneMillimetre("/data/set.voi"));
    EXPECT_THAT(host.log, ElementsAre(voiNotLoaded, voiTrouble));
}

// Protocols

TEST_F(HostData, ProtocolFileIsParsed)
{
    ASSERT_TRUE(host_data::loadProtocolFile(subject, "/data/task.prt"));
    const SubjectProtocol protocol = subject.protocol();
    EXPECT_EQ(protocol.name, "task");
    EXPECT_EQ(protocol.timeUnit, 1);
    EXPECT_EQ(protocol.conditionCount, 2);
    ASSERT_EQ(protocol.conditions.size(), 2u);
    EXPECT_EQ(protocol.conditions.at(0).name, "A");
    EXPECT_EQ(protocol.conditions.at(0).intervalCount, 2);
    EXPECT_EQ(protocol.conditions.at(0).index, 0);
    EXPECT_EQ(protocol.conditions.at(0).isEvent, 0);
    EXPECT_THAT(protocol.conditions.at(0).intervals,
                ElementsAre(std::make_pair(1, 2), std::make_pair(4, 5)));
    EXPECT_EQ(protocol.conditions.at(1).isEvent, 1);
    EXPECT_TRUE(protocol.eventRelated);
    EXPECT_EQ(protocol.volumeConditions, (std::map<int, int>{{1, 0}, {3, 1}, {4, 0}}));
    EXPECT_EQ(protocol.volumeNames, (QMap<int, QString>{{1, "A"}, {3, "B"}, {4, "A"}}));
    EXPECT_EQ(protocol.volumeEvents, (QMap<int, int>{{1, 0}, {3, 1}, {4, 0}}));
    // Which file it was is for the caller to note.
    EXPECT_FALSE(subject.hasProtocol());
}

TEST_F(HostData, ProtocolTextsAreLatin1)
{
    host.protocols["/data/task.prt"].name = "\xFC"
                                            "bung";
    host.protocols["/data/task.prt"].conditions[0].name = "gr\xFCn";
    host_data::loadProtocolFile(subject, "/data/task.prt");
    EXPECT_EQ(subject.protocol().name, QString::fromUtf8("\xC3\xBC"
                                                         "bung"));
    EXPECT_EQ(subject.protocol().conditions.at(0).name, QString::fromUtf8("gr\xC3\xBCn"));
}

TEST_F(HostData, LaterConditionWinsSharedStart)
{
    host.protocols["/data/task.prt"].conditions = {
        {"A", {{5, 9}}}, {"B", {{5, 5}}}, {"C", {{1, 3}}}};
    host_data::loadProtocolFile(subject, "/data/task.prt");
    const SubjectProtocol protocol = subject.protocol();
    EXPECT_EQ(protocol.volumeConditions, (std::map<int, int>{{1, 2}, {5, 1}}));
    EXPECT_EQ(protocol.volumeNames.value(5), "B");
    EXPECT_EQ(protocol.volumeEvents.value(5), 1);
    EXPECT_EQ(protocol.conditions.size(), 3u);
}

TEST_F(HostData, OneEventMakesAllIntervalsOfItsConditionEvents)
{
    host.protocols["/data/task.prt"].conditions = {{"A", {{1, 2}, {4, 4}, {6, 9}}},
                                                   {"B", {{11, 12}}}};
    host_data::loadProtocolFile(subject, "/data/task.prt");
    EXPECT_EQ(subject.protocol().conditions.at(0).isEvent, 1);
    EXPECT_EQ(subject.protocol().volumeEvents, (QMap<int, int>{{1, 1}, {4, 1}, {6, 1}, {11, 0}}));
    EXPECT_TRUE(subject.protocol().eventRelated);
}

TEST_F(HostData, OnePointIsNoEventInAnotherTimeUnit)
{
    for (const int unit : {2, 0, -1}) {
        host.protocols["/data/task.prt"].timeUnit = unit;
        host_data::loadProtocolFile(subject, "/data/task.prt");
        EXPECT_EQ(subject.protocol().timeUnit, unit);
        EXPECT_FALSE(subject.protocol().eventRelated);
        EXPECT_EQ(subject.protocol().conditions.at(1).isEvent, 0);
        EXPECT_EQ(subject.protocol().volumeEvents.value(3, -1), 0);
    }
}

TEST_F(HostData, NewProtocolReplacesTheOldOne)
{
    host_data::loadProtocolFile(subject, "/data/task.prt");
    fake_host::Protocol other;
    other.name = "rest";
    other.conditions = {{"R", {{2, 4}}}};
    host.protocols["/data/rest.prt"] = other;
    host_data::loadProtocolFile(subject, "/data/rest.prt");
    EXPECT_EQ(subject.protocol().volumeNames, (QMap<int, QString>{{2, "R"}}));
    EXPECT_FALSE(subject.protocol().eventRelated);
}

TEST_F(HostData, ProtocolFileThatCannotBeLoadedFailsWithoutWord)
{
    EXPECT_FALSE(host_data::loadProtocolFile(subject, "/data/missing.prt"));
    EXPECT_THAT(host.log, IsEmpty());
}

TEST_F(HostData, ProtocolThatCannotBeReadIsTroubleAndLeavesTheOldOne)
{
    host_data::loadProtocolFile(subject, "/data/task.prt");
    host.fail("zqGetProtocol", Failure::Zero);
    EXPECT_FALSE(host_data::loadProtocolFile(subject, "/data/task.prt"));
    EXPECT_THAT(host.log, ElementsAre(prtTrouble));
    EXPECT_EQ(subject.protocol().name, "task");
}

TEST_F(HostData, ZeroedProtocolRecordsGiveEmptyConditions)
{
    host.fail("zqGetProtocolCondition", Failure::ZeroedRecord);
    EXPECT_TRUE(host_data::loadProtocolFile(subject, "/data/task.prt"));
    EXPECT_EQ(subject.protocol().conditions.size(), 2u);
    EXPECT_TRUE(subject.protocol().volumeNames.isEmpty());
    host.fail("zqGetProtocolCondition", Failure::Zero);
    EXPECT_TRUE(host_data::loadProtocolFile(subject, "/data/task.prt"));
    host.fail("zqGetProtocol", Failure::ZeroedRecord);
    EXPECT_TRUE(host_data::loadProtocolFile(subject, "/data/task.prt"));
    EXPECT_TRUE(subject.protocol().conditions.empty());
}

TEST_F(HostData, VerboseLoggingListsTheStartsOfIntervals)
{
    static QStringList lines;
    lines.clear();
    const QtMessageHandler before = qInstallMessageHandler(
        [](QtMsgType, const QMessageLogContext &, const QString &text) { lines.append(text); });
    host_data::loadProtocolFile(subject, "/data/task.prt");
    EXPECT_TRUE(lines.isEmpty());
    PluginSettings::instance()->verboseLogging = true;
    host_data::loadProtocolFile(subject, "/data/task.prt");
    PluginSettings::instance()->verboseLogging = false;
    qInstallMessageHandler(before);
    EXPECT_EQ(lines, (QStringList{"1\t0", "3\t1", "4\t0"}));
}

// The protocol that a VTC names

TEST_F(HostData, LinkedProtocolIsTakenFromTheVtc)
{
    vtc().linkProtocol("/data/task.prt");
    static QStringList lines;
    lines.clear();
    const QtMessageHandler before = qInstallMessageHandler(
        [](QtMsgType, const QMessageLogContext &, const QString &text) { lines.append(text); });
    EXPECT_TRUE(subject.linkProtocol());
    qInstallMessageHandler(before);
    EXPECT_TRUE(subject.hasProtocol());
    EXPECT_TRUE(subject.protocolAutoloaded());
    EXPECT_EQ(subject.prtFile, "/data/task.prt");
    EXPECT_EQ(subject.linkedProtocolFile(), "/data/task.prt");
    EXPECT_EQ(subject.protocol().name, "task");
    // This line alone does not ask for verbose logging.
    EXPECT_EQ(lines, QStringList{"Linked proto file: /data/task.prt"});
    EXPECT_EQ(host.count("zqSetAsCurrentDocument"), 0);
}

TEST_F(HostData, AnyCountButZeroNamesProtocol)
{
    for (const int count : {1, 2, -1}) {
        vtc().linkProtocol("/data/task.prt");
        vtc().header.linkedProtocolCount = count;
        Subject other = subject;
        EXPECT_TRUE(other.linkProtocol()) << count;
        EXPECT_EQ(other.protocol().name, "task") << count;
    }
}

TEST_F(HostData, LinkedProtocolPathIsLatin1)
{
    vtc().linkProtocol("/data/gr\xFCn.prt");
    host.protocols["/data/gr\xFCn.prt"] = host.protocols["/data/task.prt"];
    EXPECT_TRUE(subject.linkProtocol());
    EXPECT_EQ(subject.prtFile, QString::fromUtf8("/data/gr\xC3\xBCn.prt"));
}

TEST_F(HostData, VtcWithoutProtocolLinksNoneWithoutWord)
{
    EXPECT_FALSE(subject.linkProtocol());
    EXPECT_FALSE(subject.hasProtocol());
    EXPECT_FALSE(subject.protocolAutoloaded());
    EXPECT_TRUE(subject.prtFile.isEmpty());
    EXPECT_THAT(host.log, IsEmpty());
    EXPECT_EQ(host.count("zqGetProtocol"), 0);
}

struct LinkFailure {
    const char *function;
    Failure failure;
    const char *line; ///< empty: none
};

class LinkFailures : public HostData, public testing::WithParamInterface<LinkFailure>
{
};

TEST_P(LinkFailures, LeaveTheSubjectWithoutProtocol)
{
    vtc().linkProtocol("/data/task.prt");
    host.fail(GetParam().function, GetParam().failure);
    EXPECT_FALSE(subject.linkProtocol());
    EXPECT_FALSE(subject.hasProtocol());
    EXPECT_FALSE(subject.protocolAutoloaded());
    if (*GetParam().line == '\0')
        EXPECT_THAT(host.log, IsEmpty());
    else
        EXPECT_THAT(host.log, ElementsAre(GetParam().line));
}

INSTANTIATE_TEST_SUITE_P(
    HostData, LinkFailures,
    testing::Values(LinkFailure{"zqLinkVTCToCurrentVMR", Failure::Zero, vtcNotLoaded},
                    LinkFailure{"zqGetHeaderOfVTCOfCurrentVMR", Failure::Zero, vtcTrouble},
                    LinkFailure{"zqGetHeaderOfVTCOfCurrentVMR", Failure::ZeroedRecord, ""},
                    LinkFailure{"zqGetProtocol", Failure::Zero, prtTrouble}));

TEST_F(HostData, RecordTextsWithoutTerminatorEndWithTheirField)
{
    fake_host::Vtc &linked = vtc();
    linked.linkProtocol("/data/task.prt");
    subject.linkProtocol();
    std::fill(std::begin(subject.vtcHeader.linkedProtocolFile),
              std::end(subject.vtcHeader.linkedProtocolFile), 'p');
    EXPECT_EQ(subject.linkedProtocolFile().size(), 524);
}

} // namespace
