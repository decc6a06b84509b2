// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the user meets when a function of the host fails: each function, at each of its calls in the
// making of one result, once without an answer and once with a zeroed record. The functions that
// the start of the plugin needs are made to fail in tests/plugin/test_start_faults.cpp.
#include "dataset/plugin_settings.h"
#include "engine/connectivity_object.h"
#include "tests/gui_test.h"
#include "tests/support/dataset_fixture.h"
#include "tests/support/fault.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QListWidget>
#include <QMessageBox>
#include <QTest>

#include <gmock/gmock.h>

#include <algorithm>

namespace
{

using fake_host::Failure;
using fake_host::Story;

/// How the result is made: as most do, from a VTC of integers, or with verbose logging, which asks
/// the host for the VOIs once more.
enum class Making { Usual, OfIntegers, Verbose };
constexpr Making allMakings[] = {Making::Usual, Making::OfIntegers, Making::Verbose};

std::string text(const QString &string)
{
    return string.toStdString();
}

class HostFault : public DatasetFixture
{
protected:
    HostFault()
    {
        fake_host::Protocol linked;
        linked.name = "linked";
        linked.conditions = {{"A", {{1, 10}}}, {"B", {{11, 20}}}};
        linkedPath = addProtocol("linked.prt", linked);
        fake_host::Protocol chosen;
        chosen.name = "chosen";
        chosen.conditions = {{"C", {{1, 20}}}, {"D", {{21, 40}}}};
        chosenPath = addProtocol("chosen.prt", chosen);
        voiPath = addVois("two.voi", 2);
        host.addVmr("/data/second.vmr");
        modals.setFallback([this](QDialog &box) {
            auto *const message = qobject_cast<QMessageBox *>(&box);
            told += message != nullptr ? message->text() : box.windowTitle();
            box.accept();
        });
    }

    ~HostFault() override { PluginSettings::instance()->verboseLogging = false; }

    /// Begins anew: an empty dialog on a host that works.
    void begin(Making making)
    {
        closeDialog();
        dialog(); // which reads the settings
        PluginSettings::instance()->verboseLogging = making == Making::Verbose;
        takeMessages();
        host.work();
        host.unload();
        host.forgetCalls();
        host.currentDocument = 0;
        fake_host::Vtc vtc = fake_host::makeVtc({{{50, 58}, {60, 68}, {70, 78}}}, 1, 40,
                                                making == Making::OfIntegers ? 1 : 2);
        vtc.linkProtocol(hostPath(linkedPath));
        vtcPath = addVtc("linked.vtc", vtc);
        told.clear();
    }

    /// Tells what the making of one result shows: a row, its VMR, VTC, PRT and VOI, its profile,
    /// its seeds and its compute.
    Story makeOneResult()
    {
        Story story = {{"vois", ""}, {"seeds", "0"}};
        find<QCheckBox>("chkBox_ShowResults")->setChecked(false);
        click("cbox_UseProtocol");
        addRow();
        QStringList documents;
        for (int item = 1; item < vmrBox(0)->count(); ++item) {
            documents.append(vmrBox(0)->itemText(item) + '=' +
                             vmrBox(0)->itemData(item).toString());
        }
        documents.sort();
        story["documents"] = text(documents.join(' '));
        vmrBox(0)->setCurrentIndex(1);

        chooseFile(0, VtcColumn, vtcPath);
        story["protocol button"] = text(fileButton(0, PrtColumn)->text());
        story["linked protocol"] = protocol();
        chooseFile(0, PrtColumn, chosenPath);
        story["chosen protocol"] = protocol();
        chooseFile(0, VoiColumn, voiPath);
        story["voi button"] = text(fileButton(0, VoiColumn)->text());
        story["loaded"] = subject(0).dataLoaded ? "yes" : "no";
        story["series"] = std::to_string(subject(0).timeseries().size());
        story["empty vois"] = std::to_string(subject(0).emptyVois.size());

        const int profile = find<QComboBox>("cBox_connectivityProfile")->findData(0);
        story["profile"] = profile > 0 ? "yes" : "no";
        if (profile > 0) {
            selectProfile(0);
            story["vois"] = text(subject(0).voiNames.join(' '));
            chooseSeeds();
            story["seeds"] = std::to_string(subject(0).scheme().seedVois.size());
            if (find<QPushButton>("btn_Compute")->isEnabled())
                compute();
        }
        story["result"] = result();
        story["names at the end"] = text(subject(0).voiNames.join(' '));
        story["available"] = availableVois();
        story["log"] = joined(host.log);
        story["host box"] = joined(host.messages);
        story["box"] = text(told);
        return story;
    }

    std::string protocol()
    {
        const SubjectProtocol found = subject(0).protocol();
        return text(found.name + ": " + found.volumeNames.values().join(' '));
    }
    std::string result()
    {
        std::string sizes;
        for (const ConnectivityObject *made : objects()) {
            for (const Eigen::MatrixXf &matrix : made->matrices()) {
                sizes += std::to_string(matrix.rows());
                sizes += matrix.isZero(0.0f) ? " zeros " : " ";
            }
        }
        return sizes;
    }
    /// What the verbose log says of them.
    static std::string availableVois()
    {
        const QString beginning = QStringLiteral("Available vois: ");
        QString said;
        for (const LoggedMessage &message : takeMessages()) {
            if (message.text.startsWith(beginning))
                said += message.text.mid(beginning.size());
        }
        return text(said);
    }
    static std::string joined(const std::vector<std::string> &lines)
    {
        std::string all;
        for (const std::string &line : lines)
            all += line + "|";
        return all;
    }
    void chooseSeeds()
    {
        modals.expect<QDialog>([](QDialog &selection) {
            auto *const list = selection.findChild<QListWidget *>();
            for (int voi = 0; voi < list->count(); ++voi) {
                QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
                                  list->visualItemRect(list->item(voi)).center());
            }
            auto *const ok =
                selection.findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Ok);
            if (ok->isEnabled())
                QTest::mouseClick(ok, Qt::LeftButton);
            else
                selection.reject();
        });
        click("btn_ConfigureVOIs");
    }

    QString linkedPath;
    QString chosenPath;
    QString vtcPath;
    QString voiPath;
    QString told; ///< by the plugin's own message boxes
};

const Story smoothly = {{"documents", "brain.vmr=0 second.vmr=1"},
                        {"protocol button", "ok - autoloaded"},
                        {"linked protocol", "linked: A B"},
                        {"chosen protocol", "chosen: C D"},
                        {"voi button", "ok"},
                        {"loaded", "yes"},
                        {"series", "2"},
                        {"empty vois", "0"},
                        {"profile", "yes"},
                        {"vois", "V0 V1"},
                        {"seeds", "2"},
                        {"available", ""},
                        {"names at the end", "V0 V1"},
                        {"result", "2 2 "},
                        {"log", "\n** Loading subject data: Subject 1...|"},
                        {"host box", ""},
                        {"box", ""}};

/// The story is what changes of the smooth one.
struct Fault : fake_host::Fault {
    Making making = Making::Usual;
};

using fake_host::both;
using fake_host::zero;
using fake_host::zeroed;

const std::string loading = "\n** Loading subject data: Subject 1...|";
const std::string vtcNotLoaded = "Plugin> Failed to load VTC file. Please retry.|";
const std::string vtcTrouble = "Plugin> Trouble with VTC file. Please retry.|";
const std::string voiNotLoaded = "Plugin> Could not load VOI file. Please retry.|";
const std::string voiTrouble = "Plugin>  Trouble with VOI. Please retry.|";
const std::string prtTrouble = "Plugin> Trouble with PRT file. Please retry.|";
const std::string vmrRequired = "This plugin requires a VMR to operate. Make sure that a VMR is "
                                "open and that its window is selected.|";
const std::string notOneMillimetre = "VOI's resolution must be 1.0mm.";
const std::string notParsed = "Faild to parse and link the selected protocol file.";
const std::string zeros = "2 zeros 2 zeros ";
const std::string noConnections = "; it has no connections|";
const std::string secondIsLost =
    loading + "Plugin> Subject 1: 1 node with values that are not finite: \"V1\"" + noConnections;
std::string isEmpty(const std::string &name)
{
    return loading + "Plugin> Subject 1: 1 node without voxels: \"" + name + "\"" + noConnections;
}

const Fault faults[] = {
    {"zqLogText", 1, both, {{"log", ""}}},
    {"zqGetNumberOfDocsInWorkspace", 1, both, {{"documents", ""}}},
    {"zqGetDocumentType", 1, both, {{"documents", "second.vmr=1"}}},
    {"zqGetDocumentType", 2, both, {{"documents", "brain.vmr=0"}}},
    {"zqGetDocumentTypeName", 1, both, {}},
    {"zqGetDocumentTypeName", 2, both, {}},
    {"zqGetIDOfCurrentDocument", 1, both, {}},
    {"zqGetIDOfCurrentDocument", 2, both, {{"documents", "second.vmr=0"}}},
    {"zqSetAsCurrentDocument", 1, both, {}},
    {"zqSetAsCurrentDocument", 2, both, {{"documents", "brain.vmr=0"}}},
    {"zqSetAsCurrentDocument", 3, both, {}},
    {"zqSetAsCurrentDocument", 4, both, {}},
    {"zqGetCurrentVMR",
     1,
     zero,
     {{"host box", vmrRequired}, {"loaded", "no"}, {"result", zeros}, {"series", "0"}}},
    {"zqGetCurrentVMR", 1, zeroed, {}},
    {"zqGetMainHeaderOfCurrentVMR", 1, both, {{"documents", "=0 second.vmr=1"}}},
    {"zqGetMainHeaderOfCurrentVMR", 2, both, {{"documents", "=1 brain.vmr=0"}}},
    {"zqLinkVTCToCurrentVMR",
     1,
     zero,
     {{"linked protocol", ": "}, {"log", vtcNotLoaded + loading}, {"protocol button", "select"}}},
    {"zqLinkVTCToCurrentVMR",
     1,
     zeroed,
     {{"linked protocol", ": "}, {"log", vtcTrouble + loading}, {"protocol button", "select"}}},
    {"zqLinkVTCToCurrentVMR",
     2,
     zero,
     {{"loaded", "no"}, {"log", loading + vtcNotLoaded}, {"result", zeros}, {"series", "0"}}},
    {"zqLinkVTCToCurrentVMR", 2, zeroed, {}},
    {"zqGetHeaderOfVTCOfCurrentVMR",
     1,
     zero,
     {{"linked protocol", ": "}, {"log", vtcTrouble + loading}, {"protocol button", "select"}}},
    {"zqGetHeaderOfVTCOfCurrentVMR",
     1,
     zeroed,
     {{"linked protocol", ": "}, {"protocol button", "select"}}},
    {"zqGetHeaderOfVTCOfCurrentVMR",
     2,
     both,
     {{"loaded", "no"}, {"log", loading + vtcTrouble}, {"result", zeros}, {"series", "0"}}},
    {"zqGetVTCFloatDataOfCurrentVMR",
     1,
     both,
     {{"loaded", "no"}, {"log", loading + vtcTrouble}, {"result", zeros}, {"series", "0"}}},
    {"zqLoadProtocol", 1, zero, {{"box", notParsed}, {"chosen protocol", "linked: A B"}}},
    {"zqLoadProtocol", 1, zeroed, {{"chosen protocol", "linked: A B"}}},
    {"zqGetProtocol",
     1,
     zero,
     {{"linked protocol", ": "}, {"log", prtTrouble + loading}, {"protocol button", "select"}}},
    {"zqGetProtocol", 1, zeroed, {{"linked protocol", ": "}}},
    {"zqGetProtocol",
     2,
     zero,
     {{"box", notParsed}, {"chosen protocol", "linked: A B"}, {"log", prtTrouble + loading}}},
    {"zqGetProtocol", 2, zeroed, {{"chosen protocol", ": "}, {"result", ""}}},
    {"zqGetProtocolCondition", 1, both, {{"linked protocol", "linked: B"}}},
    {"zqGetProtocolCondition", 2, both, {{"linked protocol", "linked: A"}}},
    {"zqGetProtocolCondition", 3, both, {{"chosen protocol", "chosen: D"}, {"result", "2 "}}},
    {"zqGetProtocolCondition", 4, both, {{"chosen protocol", "chosen: C"}, {"result", "2 "}}},
    {"zqLoadVOIs",
     1,
     zero,
     {{"box", notOneMillimetre},
      {"loaded", "no"},
      {"log", voiNotLoaded},
      {"profile", "no"},
      {"result", ""},
      {"series", "0"},
      {"voi button", "select"},
      {"seeds", "0"},
      {"names at the end", ""},
      {"vois", ""}}},
    {"zqLoadVOIs",
     1,
     zeroed,
     {{"box", notOneMillimetre},
      {"loaded", "no"},
      {"log", voiTrouble},
      {"profile", "no"},
      {"result", ""},
      {"series", "0"},
      {"voi button", "select"},
      {"seeds", "0"},
      {"names at the end", ""},
      {"vois", ""}}},
    {"zqLoadVOIs",
     2,
     zero,
     {{"loaded", "no"}, {"log", loading + voiNotLoaded}, {"result", zeros}, {"series", "0"}}},
    {"zqLoadVOIs", 2, zeroed, {}},
    {"zqLoadVOIs", 3, zero, {{"log", loading + voiNotLoaded}, {"vois", ""}}},
    {"zqLoadVOIs", 3, zeroed, {}},
    {"zqLoadVOIs", 4, zero, {{"log", loading + voiNotLoaded}, {"result", ""}, {"seeds", "0"}}},
    {"zqLoadVOIs", 4, zeroed, {}},
    {"zqGetVOIs",
     1,
     zero,
     {{"box", notOneMillimetre},
      {"loaded", "no"},
      {"log", voiTrouble},
      {"profile", "no"},
      {"result", ""},
      {"series", "0"},
      {"voi button", "select"},
      {"seeds", "0"},
      {"names at the end", ""},
      {"vois", ""}}},
    {"zqGetVOIs",
     1,
     zeroed,
     {{"box", notOneMillimetre},
      {"loaded", "no"},
      {"log", ""},
      {"profile", "no"},
      {"result", ""},
      {"series", "0"},
      {"voi button", "select"},
      {"seeds", "0"},
      {"names at the end", ""},
      {"vois", ""}}},
    {"zqGetVOIs",
     2,
     zero,
     {{"loaded", "no"}, {"log", loading + voiTrouble}, {"result", zeros}, {"series", "0"}}},
    {"zqGetVOIs", 2, zeroed, {{"result", zeros}, {"series", "0"}}},
    {"zqGetVOIs", 3, zero, {{"log", loading + voiTrouble}, {"vois", ""}}},
    {"zqGetVOIs", 3, zeroed, {{"vois", ""}}},
    {"zqGetVOIs", 4, zero, {{"log", loading + voiTrouble}, {"result", ""}, {"seeds", "0"}}},
    {"zqGetVOIs", 4, zeroed, {{"names at the end", ""}, {"result", ""}, {"seeds", "0"}}},
    {"zqGetVOI", 1, zero, {{"log", secondIsLost}, {"result", zeros}, {"series", "1"}}},
    {"zqGetVOI", 1, zeroed, {{"empty vois", "1"}, {"log", isEmpty("V0")}, {"result", zeros}}},
    {"zqGetVOI", 2, both, {{"log", secondIsLost}, {"result", zeros}, {"series", "1"}}},
    {"zqGetVOI", 3, zero, {{"log", secondIsLost}, {"result", zeros}, {"series", "1"}}},
    {"zqGetVOI", 3, zeroed, {{"empty vois", "1"}, {"log", isEmpty("V1")}, {"result", zeros}}},
    {"zqGetVOI", 4, both, {{"log", secondIsLost}, {"result", zeros}, {"series", "1"}}},
    {"zqGetVOI", 5, both, {{"vois", " (empty) V1"}}},
    {"zqGetVOI", 6, both, {{"vois", "V0  (empty)"}}},
    {"zqGetVOI", 7, both, {{"names at the end", " (empty) V1"}}},
    {"zqGetVOI", 8, both, {{"names at the end", "V0  (empty)"}}},
    {"zqGetVTCIntDataOfCurrentVMR",
     1,
     both,
     {{"loaded", "no"}, {"log", loading + vtcTrouble}, {"result", zeros}, {"series", "0"}},
     Making::OfIntegers},
    {"zqLoadVOIs", 5, zero, {{"available", "0"}, {"log", loading + voiNotLoaded}}, Making::Verbose},
    {"zqLoadVOIs", 5, zeroed, {}, Making::Verbose},
    {"zqGetVOIs", 5, zero, {{"available", "0"}, {"log", loading + voiTrouble}}, Making::Verbose},
    {"zqGetVOIs", 5, zeroed, {{"available", "0"}, {"names at the end", ""}}, Making::Verbose},
    {"zqGetVOI", 9, both, {{"names at the end", " (empty) V1"}}, Making::Verbose},
    {"zqGetVOI", 10, both, {{"names at the end", "V0  (empty)"}}, Making::Verbose},
};

class EachHostFault : public HostFault, public testing::WithParamInterface<Fault>
{
};

INSTANTIATE_TEST_SUITE_P(Faults, EachHostFault, testing::ValuesIn(faults),
                         [](const auto &test) { return testName(test.param); });

/// The smooth story with the changes that the fault makes.
Story expectedStory(const Fault &fault)
{
    Story story = fault.story;
    if (fault.making == Making::Verbose)
        story.insert({"available", "2"});
    story.insert(smoothly.begin(), smoothly.end());
    return story;
}

TEST_P(EachHostFault, IsToldAndLeavesTheRestWorking)
{
    const Fault &fault = GetParam();
    for (const Failure failure : fault.failures) {
        begin(fault.making);
        host.fail(fault.function, failure, fault.nthCall);
        EXPECT_EQ(makeOneResult(), expectedStory(fault))
            << (failure == Failure::Zero ? "none" : "zeroed");

        // And the dialog works on: another row gives its result.
        host.work();
        host.currentDocument = 0;
        find<QCheckBox>("cbox_UseProtocol")->setChecked(false);
        const int row = addReadyRow();
        rename(row, "another");
        computeRow(row, {0, 1, 2});
        EXPECT_EQ(object(objects().size() - 1)->matrices().at(0).rows(), 3);
    }
}

TEST_P(EachHostFault, IsTheSameWhenTheLogAndTheMessageBoxFailToo)
{
    const Fault &fault = GetParam();
    Story expected = expectedStory(fault);
    expected["log"] = "";
    expected["host box"] = "";
    for (const Failure silent : both) {
        begin(fault.making);
        host.fail(fault.function, fault.failures.front(), fault.nthCall);
        host.fail("zqLogText", silent);
        host.fail("zqMessageBox", silent);
        EXPECT_EQ(makeOneResult(), expected);
        EXPECT_EQ(host.count("zqMessageBox"), expectedStory(fault)["host box"].empty() ? 0 : 1);
    }
}

TEST_F(HostFault, NoneTellsTheSmoothStory)
{
    for (const Making making : allMakings) {
        begin(making);
        Story expected = smoothly;
        expected["available"] = making == Making::Verbose ? "2" : "";
        EXPECT_EQ(makeOneResult(), expected);
    }
}

/// Every call of a function that the stories make is made to fail in both ways.
TEST_F(HostFault, AreCompleteForTheStories)
{
    std::size_t calls = 0;
    for (const Making making : allMakings) {
        begin(making);
        makeOneResult();
        EXPECT_THAT(fake_host::untested(faults, host), testing::IsEmpty());
        calls += host.calls.size();
    }
    EXPECT_GT(calls, 120U);
}

/// What no fault names is called by the start of the plugin alone, or where something has failed.
TEST_F(HostFault, AreCompleteForTheFunctions)
{
    std::vector<std::string> others;
    for (const std::string &function : fake_host::FakeHost::functionNames()) {
        if (std::none_of(std::begin(faults), std::end(faults),
                         [&](const Fault &fault) { return fault.function == function; }))
            others.push_back(function);
    }
    EXPECT_THAT(others,
                testing::ElementsAre("zqGetVersionOfCorvaneZQ", "zqShowLogPane", "zqMessageBox"));
}

} // namespace
