// SPDX-License-Identifier: GPL-3.0-or-later
//
// A host that tells nonsense: each field of each record, by itself and with all the rest in order.
// The plugin must not read what it was not given, which a sanitizer sees, nor count for minutes,
// and must say what it does not believe. That an array is as long as its record says is all that it
// can know: a host that gives less than it tells of is beyond any plugin.
#include "dataset/subject.h"
#include "engine/assembly.h"
#include "engine/compute_checks.h"
#include "engine/compute_steps.h"
#include "plugin/host_data.h"
#include "tests/support/fake_host.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <limits>
#include <numeric>

namespace
{

using fake_host::Lies;
using testing::Contains;
using testing::Not;

constexpr int lowest = std::numeric_limits<int>::min();
constexpr int highest = std::numeric_limits<int>::max();
constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();
constexpr float infinite = std::numeric_limits<float>::infinity();

const char *const vtcTrouble = "Plugin> Trouble with VTC file. Please retry.";
const char *const voiTrouble = "Plugin>  Trouble with VOI. Please retry.";
const char *const prtTrouble = "Plugin> Trouble with PRT file. Please retry.";

/// Which of the three things that a host gives comes to the subject all the same.
struct Outcome {
    bool series = true;
    bool names = true;
    bool protocol = true;
    const char *line = ""; ///< one of the log's, empty: none
    const char *last = ""; ///< the log's last one, empty: any
};

const Outcome fine = {};
const Outcome noNames = {true, false, true, "", ""}; ///< a file of no VOIs

Outcome noSeries(const char *line = "")
{
    return {false, true, true, line, vtcTrouble};
}

Outcome noVois(const char *line)
{
    return {false, false, true, line, voiTrouble};
}

Outcome noVoxels(const char *line)
{
    return {false, true, true, line, voiTrouble};
}

Outcome noProtocol(const char *line)
{
    return {true, true, false, line, ""};
}

struct Nonsense {
    const char *name;
    Lies lies;
    Outcome outcome;
};

void PrintTo(const Nonsense &nonsense, std::ostream *stream)
{
    *stream << nonsense.name;
}

template <std::size_t Size>
void fill(char (&text)[Size], char character)
{
    std::fill(std::begin(text), std::end(text), character);
}

/// All as it should be but for one record.
template <typename Record, typename Lie>
Lies with(Record Lies::*record, Lie lie)
{
    Lies lies;
    lies.*record = lie;
    return lies;
}

const Nonsense allNonsense[] = {
    {"NoVolumes", with(&Lies::vtcHeader, [](VTCHeader &h) { h.nrOfVolumes = 0; }), noSeries()},
    {"MinusOneVolumes", with(&Lies::vtcHeader, [](VTCHeader &h) { h.nrOfVolumes = -1; }),
     noSeries()},
    {"FewestVolumes", with(&Lies::vtcHeader, [](VTCHeader &h) { h.nrOfVolumes = lowest; }),
     noSeries()},
    {"MostVolumes", with(&Lies::vtcHeader, [](VTCHeader &h) { h.nrOfVolumes = highest; }),
     noSeries("Plugin> The host tells of 2147483647 volumes, which cannot be.")},
    {"LowestXStart", with(&Lies::vtcHeader, [](VTCHeader &h) { h.xStart = lowest; }), noSeries()},
    {"HighestXStart", with(&Lies::vtcHeader, [](VTCHeader &h) { h.xStart = highest; }), noSeries()},
    {"LowestXEnd", with(&Lies::vtcHeader, [](VTCHeader &h) { h.xEnd = lowest; }), noSeries()},
    {"HighestXEnd", with(&Lies::vtcHeader, [](VTCHeader &h) { h.xEnd = highest; }), noSeries()},
    {"LowestYStart", with(&Lies::vtcHeader, [](VTCHeader &h) { h.yStart = lowest; }), noSeries()},
    {"HighestYStart", with(&Lies::vtcHeader, [](VTCHeader &h) { h.yStart = highest; }), noSeries()},
    {"LowestYEnd", with(&Lies::vtcHeader, [](VTCHeader &h) { h.yEnd = lowest; }), noSeries()},
    {"HighestYEnd", with(&Lies::vtcHeader, [](VTCHeader &h) { h.yEnd = highest; }), noSeries()},
    {"LowestZStart", with(&Lies::vtcHeader, [](VTCHeader &h) { h.zStart = lowest; }), noSeries()},
    {"HighestZStart", with(&Lies::vtcHeader, [](VTCHeader &h) { h.zStart = highest; }), noSeries()},
    {"LowestZEnd", with(&Lies::vtcHeader, [](VTCHeader &h) { h.zEnd = lowest; }), noSeries()},
    {"HighestZEnd", with(&Lies::vtcHeader, [](VTCHeader &h) { h.zEnd = highest; }), noSeries()},
    {"AllOfSpace",
     with(&Lies::vtcHeader,
          [](VTCHeader &h) {
              h.xStart = h.yStart = h.zStart = lowest;
              h.xEnd = h.yEnd = h.zEnd = highest;
              h.resolution = 1;
          }),
     noSeries()},
    {"NoResolution", with(&Lies::vtcHeader, [](VTCHeader &h) { h.resolution = 0; }), noSeries()},
    {"LowestResolution", with(&Lies::vtcHeader, [](VTCHeader &h) { h.resolution = lowest; }),
     noSeries()},
    {"HighestResolution", with(&Lies::vtcHeader, [](VTCHeader &h) { h.resolution = highest; }),
     noSeries()},
    {"LowestDataType", with(&Lies::vtcHeader, [](VTCHeader &h) { h.dataType = lowest; }), fine},
    {"HighestDataType", with(&Lies::vtcHeader, [](VTCHeader &h) { h.dataType = highest; }), fine},
    {"IntegersThatAreNone", with(&Lies::vtcHeader, [](VTCHeader &h) { h.dataType = 1; }),
     noSeries()},
    {"LowestLinkedProtocols",
     with(&Lies::vtcHeader, [](VTCHeader &h) { h.linkedProtocolCount = lowest; }), fine},
    {"HighestLinkedProtocols",
     with(&Lies::vtcHeader, [](VTCHeader &h) { h.linkedProtocolCount = highest; }), fine},
    {"UnterminatedLinkedProtocol",
     with(&Lies::vtcHeader, [](VTCHeader &h) { fill(h.linkedProtocolFile, 'p'); }), fine},
    {"LinkedProtocolOfOddBytes",
     with(&Lies::vtcHeader, [](VTCHeader &h) { fill(h.linkedProtocolFile, '\xff'); }), fine},

    {"MinusOneVois", with(&Lies::voisHeader, [](VOIsHeader &h) { h.voiCount = -1; }), noNames},
    {"FewestVois", with(&Lies::voisHeader, [](VOIsHeader &h) { h.voiCount = lowest; }), noNames},
    {"MostVois", with(&Lies::voisHeader, [](VOIsHeader &h) { h.voiCount = highest; }),
     noVois("Plugin> The host tells of 2147483647 VOIs, which cannot be.")},
    {"MoreVoisThanItGives", with(&Lies::voisHeader, [](VOIsHeader &h) { h.voiCount = 100; }), fine},
    {"LowestReferenceSpace",
     with(&Lies::voisHeader, [](VOIsHeader &h) { h.referenceSpace = lowest; }), fine},
    {"HighestReferenceSpace",
     with(&Lies::voisHeader, [](VOIsHeader &h) { h.referenceSpace = highest; }), fine},
    {"ResolutionXThatIsNoNumber",
     with(&Lies::voisHeader, [](VOIsHeader &h) { h.resolutionX = notANumber; }), fine},
    {"ResolutionYWithoutEnd",
     with(&Lies::voisHeader, [](VOIsHeader &h) { h.resolutionY = infinite; }), fine},
    {"ResolutionZBelowZero",
     with(&Lies::voisHeader, [](VOIsHeader &h) { h.resolutionZ = -infinite; }), fine},

    {"MinusOneVoxels", with(&Lies::voiRecord, [](VOIRecord &r) { r.voxelCount = -1; }), fine},
    {"FewestVoxels", with(&Lies::voiRecord, [](VOIRecord &r) { r.voxelCount = lowest; }), fine},
    {"MostVoxels", with(&Lies::voiRecord, [](VOIRecord &r) { r.voxelCount = highest; }),
     noVoxels("Plugin> The host tells of 2147483647 voxels in one VOI, which cannot be.")},
    {"UnterminatedVoiName", with(&Lies::voiRecord, [](VOIRecord &r) { fill(r.name, 'v'); }), fine},
    {"VoiNameOfOddBytes", with(&Lies::voiRecord, [](VOIRecord &r) { fill(r.name, '\xff'); }), fine},
    {"VoiNameOfHalfCharacters", with(&Lies::voiRecord, [](VOIRecord &r) { fill(r.name, '\x80'); }),
     fine},
    {"VoiNameOfFormats",
     with(&Lies::voiRecord,
          [](VOIRecord &r) {
              fill(r.name, '%');
              for (std::size_t n = 1; n < sizeof r.name; n += 2)
                  r.name[n] = 'n';
          }),
     fine},

    {"MinusOneConditions",
     with(&Lies::protocolHeader, [](ProtocolHeader &h) { h.conditionCount = -1; }), fine},
    {"FewestConditions",
     with(&Lies::protocolHeader, [](ProtocolHeader &h) { h.conditionCount = lowest; }), fine},
    {"MostConditions",
     with(&Lies::protocolHeader, [](ProtocolHeader &h) { h.conditionCount = highest; }),
     noProtocol("Plugin> The host tells of 2147483647 conditions, which cannot be.")},
    {"MoreConditionsThanItGives",
     with(&Lies::protocolHeader, [](ProtocolHeader &h) { h.conditionCount = 100; }), fine},
    {"UnterminatedProtocolName",
     with(&Lies::protocolHeader, [](ProtocolHeader &h) { fill(h.name, 'p'); }), fine},
    {"LowestTimeUnit", with(&Lies::protocolHeader, [](ProtocolHeader &h) { h.timeUnit = lowest; }),
     fine},
    {"HighestTimeUnit",
     with(&Lies::protocolHeader, [](ProtocolHeader &h) { h.timeUnit = highest; }), fine},

    {"UnterminatedConditionName",
     with(&Lies::conditionRecord, [](ConditionRecord &r) { fill(r.name, 'c'); }), fine},
    {"MinusOneIntervals",
     with(&Lies::conditionRecord, [](ConditionRecord &r) { r.intervalCount = -1; }), fine},
    {"FewestIntervals",
     with(&Lies::conditionRecord, [](ConditionRecord &r) { r.intervalCount = lowest; }), fine},
    {"MostIntervals",
     with(&Lies::conditionRecord, [](ConditionRecord &r) { r.intervalCount = highest; }),
     noProtocol("Plugin> The host tells of 2147483647 intervals in one condition, which cannot "
                "be.")},
    {"NoStarts", with(&Lies::conditionRecord, [](ConditionRecord &r) { r.from = nullptr; }), fine},
    {"NoEnds", with(&Lies::conditionRecord, [](ConditionRecord &r) { r.to = nullptr; }), fine},
    {"NeitherStartsNorEnds",
     with(&Lies::conditionRecord, [](ConditionRecord &r) { r.from = r.to = nullptr; }), fine},

    {"FewestDocuments", with(&Lies::documentCount, [](int &count) { count = lowest; }), fine},
    {"MostDocuments",
     with(&Lies::documentCount, [](int &count) { count = highest; }),
     {true, true, true, "Plugin> The host tells of 2147483647 documents, which cannot be.", ""}},
    {"UnterminatedPath", with(&Lies::vmrHeader, [](VMRHeader &h) { fill(h.path, 'a'); }), fine},
    {"PathOfOddBytes", with(&Lies::vmrHeader, [](VMRHeader &h) { fill(h.path, '\xff'); }), fine},
    {"PathOfFolders", with(&Lies::vmrHeader, [](VMRHeader &h) { fill(h.path, '/'); }), fine},
};

class HostileHost : public testing::Test
{
protected:
    HostileHost()
    {
        host.addVmr("/data/brain.vmr");
        fake_host::Vtc linked = fake_host::makeVtc({{{57, 69}, {52, 61}, {59, 65}}}, 3, 24);
        linked.linkProtocol("/data/task.prt");
        host.vtcs["/data/run.vtc"] = linked;
        voiSet().vois = {{"V1", {{57, 52, 59}, {66, 58, 62}}}, {"V2", {{60, 52, 59}}}, {"V3", {}}};
        fake_host::Protocol task;
        task.name = "task";
        task.conditions = {{"A", {{1, 6}, {13, 18}}}, {"B", {{7, 12}}}, {"C", {{19, 19}}}};
        host.protocols["/data/task.prt"] = task;
    }

    static Subject freshSubject()
    {
        Subject subject;
        subject.setName("Ann");
        subject.setDocumentId(0);
        subject.setVtcFile("/data/run.vtc");
        subject.setVoiFile("/data/set.voi");
        return subject;
    }

    fake_host::VoiSet &voiSet() { return host.voiSets["/data/set.voi"]; }

    /// All that the plugin does with a subject, from its files to its matrices, as its windows do
    /// it.
    Outcome wayOf(Subject &subject)
    {
        host_data::vmrDocuments();
        Outcome outcome;
        outcome.protocol = subject.linkProtocol();
        outcome.names = subject.voiCount(true) > 0;
        host_data::voiFileIsOneMillimetre("/data/set.voi");
        outcome.series = subject.load();

        ConnectivityScheme scheme;
        scheme.seedVois.resize(subject.voiNames.size());
        std::iota(scheme.seedVois.begin(), scheme.seedVois.end(), 0);
        subject.setScheme(scheme);
        const std::vector<int> seeds(scheme.seedVois.begin(), scheme.seedVois.end());
        const Eigen::MatrixXf series = subject.averagedTimeseries(seeds);
        EXPECT_EQ(series.rows(), subject.voiNames.size());
        for (const bool useProtocol : {false, true}) {
            subject.setUseProtocol(useProtocol);
            computeWarnings(subject, series, subject.voiLabels(false));
            finishSlices(subject, measureSlices(subject, series));
        }
        return outcome;
    }

    fake_host::FakeHost host;
};

class HostileRecord : public HostileHost, public testing::WithParamInterface<Nonsense>
{
};

INSTANTIATE_TEST_SUITE_P(EachField, HostileRecord, testing::ValuesIn(allNonsense),
                         [](const auto &test) { return test.param.name; });

TEST_P(HostileRecord, IsReadNoFurtherThanItWasGiven)
{
    const Outcome &expected = GetParam().outcome;
    host.lies = GetParam().lies;
    Subject subject = freshSubject();
    const Outcome found = wayOf(subject);
    EXPECT_EQ(found.series, expected.series);
    EXPECT_EQ(found.names, expected.names);
    EXPECT_EQ(found.protocol, expected.protocol);
    if (*expected.line != '\0') {
        EXPECT_THAT(host.log, Contains(expected.line));
    } else {
        EXPECT_THAT(host.log, Not(Contains(testing::HasSubstr("cannot be"))));
    }
    if (*expected.last != '\0') {
        EXPECT_EQ(host.log.back(), expected.last);
    }
    if (!expected.protocol) {
        EXPECT_THAT(host.log, Contains(prtTrouble));
    }
}

TEST_P(HostileRecord, LeavesTheNextSubjectAlone)
{
    host.lies = GetParam().lies;
    Subject subject = freshSubject();
    wayOf(subject);
    host.lies = {};
    Subject next = freshSubject();
    const Outcome found = wayOf(next);
    EXPECT_TRUE(found.series && found.names && found.protocol);
    EXPECT_EQ(next.timeseries().size(), 3u);
    EXPECT_EQ(next.voiNames, (QStringList{"V1", "V2", "V3 (empty)"}));
    EXPECT_EQ(next.protocol().volumeNames.size(), 4);
}

TEST_F(HostileHost, TextsWithoutTerminatorEndWithTheirFields)
{
    host.lies.vtcHeader = [](VTCHeader &h) { fill(h.linkedProtocolFile, 'p'); };
    host.lies.voiRecord = [](VOIRecord &r) { fill(r.name, 'v'); };
    host.lies.protocolHeader = [](ProtocolHeader &h) { fill(h.name, 'n'); };
    host.lies.conditionRecord = [](ConditionRecord &r) { fill(r.name, 'c'); };
    host.lies.vmrHeader = [](VMRHeader &h) { fill(h.path, 'a'); };
    Subject subject = freshSubject();
    wayOf(subject);
    EXPECT_EQ(subject.linkedProtocolFile(), QString(524, 'p'));
    EXPECT_EQ(subject.voiNames.first(), QString(260, 'v'));
    EXPECT_EQ(subject.protocol().name, QString(303, 'n'));
    EXPECT_EQ(subject.protocol().conditions.at(0).name, QString(256, 'c'));
    EXPECT_EQ(host_data::vmrDocuments().value(0), QString(368, 'a'));
}

TEST_F(HostileHost, VoxelsOutsideTheVolumeCountAsZero)
{
    for (const int space : {lowest, 0, 2, 3, highest}) {
        voiSet().referenceSpace = space;
        voiSet().vois = {{"far",
                          {{lowest, lowest, lowest},
                           {highest, highest, highest},
                           {lowest, 52, 59},
                           {57, highest, 59},
                           {57, 52, lowest},
                           {128 - highest, 0, 0}}}};
        Subject subject = freshSubject();
        ASSERT_TRUE(subject.load());
        EXPECT_TRUE(subject.timeseries().at(0).isZero(0.0f)) << space;
        EXPECT_THAT(host.log, Contains("Plugin> 6 of 6 voxels lie outside the VTC and count as 0 "
                                       "in VOI far"));
    }
}

TEST_F(HostileHost, IntervalsFromAnywhereToAnywhereAreCutToTheRun)
{
    host.protocols["/data/task.prt"].conditions = {
        {"A", {{lowest, highest}, {highest, lowest}, {-5, 3}, {0, 0}}},
        {"B", {{lowest + 1, lowest}, {20, highest}, {12, 3}}}};
    Subject subject = freshSubject();
    const Outcome found = wayOf(subject);
    EXPECT_TRUE(found.protocol);
    const Eigen::MatrixXf series = subject.averagedTimeseries({0, 1});
    std::vector<Eigen::Index> volumes;
    for (const auto &interval : sliceIntervals(subject.protocol()))
        volumes.push_back(blockOfInterval(series, interval).cols());
    EXPECT_THAT(volumes, testing::ElementsAre(24, 0, 3, 0, 0, 5, 0));
    const QStringList warnings = computeWarnings(subject, series, subject.voiLabels(false));
    EXPECT_TRUE(
        warnings.join('\n').contains("interval 1 (\"A\"), volumes -2147483648 to 2147483647"));
}

#ifndef __SANITIZE_ADDRESS__ // which ends a program that asks for so much
TEST_F(HostileHost, MoreSamplesThanMemoryHoldsAreToldOfAndNotRead)
{
    host.lies.vtcHeader = [](VTCHeader &h) { h.nrOfVolumes = 1 << 24; };
    host.lies.voiRecord = [](VOIRecord &r) { r.voxelCount = 1 << 24; };
    Subject subject = freshSubject();
    EXPECT_FALSE(subject.load());
    EXPECT_EQ(host.log.back(), "Plugin> There is not enough memory for the samples of VOI V1.");
}
#endif

} // namespace
