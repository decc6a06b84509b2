// SPDX-License-Identifier: GPL-3.0-or-later
//
// The settings of the selected profile, and what the selection does to the form.
#include "dataset/plugin_settings.h"
#include "tests/gui_test.h"
#include "tests/support/dataset_fixture.h"

#include <QCheckBox>
#include <QRadioButton>
#include <QStandardItemModel>
#include <QTableView>
#include <QTest>

namespace
{

/// A default profile with its defaults, which outlives the dialogs.
class Profile : public DatasetFixture
{
protected:
    Profile() { *defaultProfile() = Subject(); }
    ~Profile() override { *defaultProfile() = Subject(); }

    bool isChecked(const char *name) { return find<QAbstractButton>(name)->isChecked(); }
    bool isEnabled(const char *name) { return find<QWidget>(name)->isEnabled(); }
    QPushButton *computeButton() { return find<QPushButton>("btn_Compute"); }
    QComboBox *voiBox() { return find<QComboBox>("cbox_ConfigureVOI"); }
};

/// A control and what it sets to what.
struct Setting {
    const char *control;
    int (*read)(const Subject &);
    int before;
    int after;
};

int measure(const Subject &subject)
{
    return subject.measure();
}
int values(const Subject &subject)
{
    return subject.matrixValues();
}
int mst(const Subject &subject)
{
    return subject.computeMst() ? 1 : 0;
}

const Setting settings[] = {
    {"rbtn_PartialCorrelation", measure, 1, 2}, {"rbtn_Correlation", measure, 2, 1},
    {"rbtn_PositiveMtx", values, 0, 1},         {"rbtn_NegativeMtx", values, 1, 2},
    {"rbtn_AbsoluteMtx", values, 2, 0},         {"chkBox_ComputeMST", mst, 1, 0},
};

TEST_F(Profile, SettingsGoToTheSelectedSubjectAlone)
{
    const int first = addReadyRow();
    const int second = addReadyRow();
    selectProfile(second);
    for (const Setting &setting : settings) {
        EXPECT_EQ(setting.read(subject(second)), setting.before) << setting.control;
        click(setting.control);
        EXPECT_EQ(setting.read(subject(second)), setting.after) << setting.control;
    }
    for (const Subject *other : {&subject(first), defaultProfile()}) {
        EXPECT_EQ(other->measure(), 1);
        EXPECT_EQ(other->matrixValues(), 0);
        EXPECT_TRUE(other->computeMst());
    }
}

TEST_F(Profile, SettingsOfAllSurviveAndReachNoSubject)
{
    addReadyRow();
    click("rbtn_PartialCorrelation");
    click("rbtn_NegativeMtx");
    click("chkBox_ComputeMST");
    EXPECT_EQ(defaultProfile()->measure(), 2);
    selectProfile(0);
    EXPECT_TRUE(isChecked("rbtn_Correlation"));
    EXPECT_TRUE(isChecked("rbtn_AbsoluteMtx"));
    EXPECT_TRUE(isChecked("chkBox_ComputeMST"));
    selectProfile(-1);
    EXPECT_TRUE(isChecked("rbtn_PartialCorrelation"));
    EXPECT_TRUE(isChecked("rbtn_NegativeMtx"));
    EXPECT_FALSE(isChecked("chkBox_ComputeMST"));
    EXPECT_EQ(subject(0).measure(), 1);
    closeDialog();
    addReadyRow();
    selectProfile(0);
    selectProfile(-1);
    EXPECT_TRUE(isChecked("rbtn_PartialCorrelation")) << "it outlives the dialog";
}

TEST_F(Profile, SettingsOfAllReachNoRowThatComesLater)
{
    addReadyRow();
    const int waiting = addRow();
    click("rbtn_PartialCorrelation");
    click("rbtn_NegativeMtx");
    click("chkBox_ComputeMST");
    dialog().configureVoxelToVoxel(1);
    const int added = addRow();
    const auto expectDefaults = [this](int row) {
        EXPECT_EQ(subject(row).measure(), 1) << row;
        EXPECT_EQ(subject(row).matrixValues(), 0) << row;
        EXPECT_TRUE(subject(row).computeMst()) << row;
        EXPECT_EQ(subject(row).scheme().voiIndex, -1) << row;
        EXPECT_TRUE(subject(row).scheme().seedVois.isEmpty()) << row;
    };
    for (const int row : {waiting, added}) {
        expectDefaults(row);
        finishRow(row, addVtc("run.vtc"), addVois("set.voi"));
        expectDefaults(row);
        selectProfile(row);
        expectDefaults(row);
        EXPECT_TRUE(isChecked("rbtn_Correlation"));
        EXPECT_TRUE(isChecked("rbtn_AbsoluteMtx"));
        EXPECT_TRUE(isChecked("chkBox_ComputeMST"));
        selectProfile(-1);
    }
    EXPECT_EQ(defaultProfile()->measure(), 2);
}

TEST_F(Profile, SelectionShowsTheRecord)
{
    addReadyRow();
    addReadyRow();
    subject(1).setMeasure(2);
    subject(1).setMatrixValues(1);
    subject(1).setComputeMst(false);
    selectProfile(1);
    EXPECT_TRUE(isChecked("rbtn_PartialCorrelation"));
    EXPECT_TRUE(isChecked("rbtn_PositiveMtx"));
    EXPECT_FALSE(isChecked("chkBox_ComputeMST"));
    EXPECT_TRUE(isChecked("rbtn_SeedToSeed"));
    // Codes that mean nothing leave the buttons as they are.
    subject(0).setMeasure(9);
    subject(0).setMatrixValues(9);
    selectProfile(0);
    EXPECT_TRUE(isChecked("rbtn_PartialCorrelation"));
    EXPECT_TRUE(isChecked("rbtn_PositiveMtx"));
    EXPECT_TRUE(isChecked("chkBox_ComputeMST"));
}

TEST_F(Profile, ComputeButtonFollowsTheProfile)
{
    addReadyRow();
    addReadyRow();
    EXPECT_EQ(computeButton()->text(), "Compute All");
    EXPECT_FALSE(computeButton()->isEnabled());
    selectProfile(0);
    EXPECT_EQ(computeButton()->text(), "Compute");
    EXPECT_TRUE(computeButton()->isEnabled());
    subject(1).setComputed(true);
    selectProfile(1);
    EXPECT_EQ(computeButton()->text(), "Compute");
    EXPECT_FALSE(computeButton()->isEnabled());
    selectProfile(-1);
    EXPECT_EQ(computeButton()->text(), "Compute All");
    EXPECT_TRUE(computeButton()->isEnabled());
    compute(); // pressed, it does nothing
    EXPECT_TRUE(objects().isEmpty());
    EXPECT_FALSE(isEnabled("tab_Graphs"));
}

TEST_F(Profile, SelectingASubjectReadsItsVoisAnew)
{
    addReadyRow();
    host.forgetCalls();
    selectProfile(0);
    EXPECT_EQ(host.count("zqLoadVOIs"), 1);
    ASSERT_EQ(voiBox()->count(), 13);
    EXPECT_EQ(voiBox()->currentIndex(), 0);
    EXPECT_EQ(voiBox()->itemText(0), "select");
    EXPECT_FALSE(voiBox()->itemData(0).isValid());
    for (int voi = 0; voi < 12; ++voi) {
        EXPECT_EQ(voiBox()->itemText(voi + 1), "V" + QString::number(voi));
        EXPECT_EQ(voiBox()->itemData(voi + 1), voi);
    }
    const QStandardItem *const select =
        qobject_cast<QStandardItemModel *>(voiBox()->model())->item(0);
    EXPECT_EQ(select->font().weight(), 75);
    EXPECT_FALSE(select->isSelectable());
    selectProfile(-1);
    EXPECT_EQ(voiBox()->count(), 1);
    EXPECT_EQ(voiBox()->itemText(0), "select");
}

TEST_F(Profile, OneVoiNeedsNoChoice)
{
    const int row = addRow();
    finishRow(row, addVtc("run.vtc"), addVois("one.voi", 1));
    selectProfile(row);
    EXPECT_EQ(voiBox()->count(), 1);
    EXPECT_EQ(voiBox()->itemText(0), "select");
}

TEST_F(Profile, VoisThatTheHostRefusesLeaveOnlySelect)
{
    addReadyRow();
    host.log.clear();
    host.voiSets.clear();
    selectProfile(0);
    EXPECT_EQ(voiBox()->count(), 1);
    EXPECT_EQ(hostLog(), QStringList{"Plugin> Could not load VOI file. Please retry."});
}

TEST_F(Profile, EmptyVoisAreLabelled)
{
    fake_host::VoiSet set;
    set.vois = {{"V1", {{50, 60, 70}}}, {"V2", {}}};
    const int row = addRow();
    finishRow(row, addVtc("run.vtc"), addVois("set.voi", set));
    selectProfile(row);
    EXPECT_EQ(voiBox()->itemText(2), "V2 (empty)");
}

TEST_F(Profile, AnyOtherKindIsShownAsVoxelToVoxel)
{
    addReadyRow();
    addReadyRow();
    ConnectivityScheme scheme = subject(1).scheme();
    scheme.kind = 2;
    scheme.voiIndex = 4;
    subject(1).setScheme(scheme);
    selectProfile(1);
    EXPECT_EQ(voiBox()->currentIndex(), 4);
    EXPECT_FALSE(isEnabled("btn_ConfigureVOIs"));
    EXPECT_FALSE(isChecked("rbtn_VoxelToVoxel")) << "it can't be checked";
    selectProfile(0);
    EXPECT_TRUE(isEnabled("btn_ConfigureVOIs"));
    EXPECT_TRUE(isChecked("rbtn_SeedToSeed"));
}

TEST_F(Profile, SeedToSeedSetsTheKindAndEnablesTheSelection)
{
    addReadyRow();
    ConnectivityScheme scheme;
    scheme.kind = 2;
    scheme.seedVois = {3, 1};
    subject(0).setScheme(scheme);
    selectProfile(0);
    EXPECT_FALSE(isEnabled("btn_ConfigureVOIs"));
    click("rbtn_SeedToSeed");
    EXPECT_EQ(subject(0).scheme().kind, 1);
    EXPECT_EQ(subject(0).scheme().seedVois, (QVector<int>{3, 1}));
    EXPECT_TRUE(isEnabled("btn_ConfigureVOIs"));
}

TEST_F(Profile, VoxelToVoxelCannotBeChosen)
{
    find<QWidget>("tab_Connectivity")->setEnabled(true);
    click("rbtn_VoxelToVoxel");
    EXPECT_FALSE(isChecked("rbtn_VoxelToVoxel"));
    EXPECT_TRUE(isChecked("rbtn_SeedToSeed"));
    EXPECT_EQ(defaultProfile()->scheme().kind, 1);
}

TEST_F(Profile, VoiChoiceStoresTheIndexOfTheBox)
{
    addReadyRow();
    selectProfile(0);
    EXPECT_FALSE(voiBox()->isEnabled()); // locked: nothing but code reaches it
    dialog().configureVoxelToVoxel(5);
    EXPECT_EQ(subject(0).scheme().voiIndex, 5);
    selectProfile(-1);
    selectProfile(0);
    EXPECT_EQ(voiBox()->currentIndex(), 5);
}

TEST_F(Profile, ControlsWithoutEffectHaveNone)
{
    find<QWidget>("tab_Connectivity")->setEnabled(true);
    for (const char *name : {"rbtn_Covariance", "rbtn_Tangent", "rdBtn_Dynamic", "rdBtn_Static",
                             "btn_ConfigureDynamic"})
        click(name);
    EXPECT_EQ(defaultProfile()->measure(), 1);
    EXPECT_EQ(defaultProfile()->matrixValues(), 0);
    EXPECT_EQ(defaultProfile()->scheme().kind, 1);
}

TEST_F(Profile, VoiListIsLogged)
{
    const int row = addRow();
    finishRow(row, addVtc("run.vtc"), addVois("two.voi", 2));
    PluginSettings::instance()->verboseLogging = true;
    takeMessages();
    selectProfile(row);
    PluginSettings::instance()->verboseLogging = false;
    const QVector<LoggedMessage> messages = takeMessages();
    ASSERT_EQ(messages.size(), 2);
    EXPECT_EQ(messages.at(0).text, subject(row).describe());
    EXPECT_EQ(messages.at(1).text, "void __cdecl Tessera::setVOIsList(void)(V0, V1)");
}

TEST_F(Profile, LongNamesDoNotWidenTheDialog)
{
    fake_host::VoiSet set;
    set.vois = {{std::string(250, 'V'), {{50, 60, 70}}}, {std::string(250, 'W'), {{51, 60, 70}}}};
    const int row = addRow();
    rename(row, QString(10000, QLatin1Char('n')));
    finishRow(row, addVtc("run.vtc"), addVois("long.voi", set));
    // Both boxes hold the names before they are seen for the first time.
    auto *const profiles = find<QComboBox>("cBox_connectivityProfile");
    profiles->setCurrentIndex(profiles->findData(row));
    ASSERT_EQ(voiBox()->count(), 3);
    find<QCheckBox>("chkBox_ShowResults")->setChecked(false);
    selectSeeds({0, 1});
    compute();
    showTab(find<QWidget>("list_ConnObjs"));
    QCoreApplication::processEvents();
    EXPECT_EQ(dialog().size(), QSize(533, 740));
    EXPECT_LE(dialog().minimumSizeHint().width(), 533);
    EXPECT_LE(dialog().sizeHint().width(), 533);
}

TEST_F(Profile, FiveThousandVois)
{
    const int row = addRow();
    finishRow(row, addVtc("run.vtc", 5), addVois("many.voi", 5000));
    EXPECT_EQ(subject(row).timeseries().size(), 5000u);
    selectProfile(row);
    EXPECT_EQ(voiBox()->count(), 5001);
    selectSeeds({0, 2500, 4999});
    EXPECT_EQ(subject(row).scheme().seedVois, (QVector<int>{0, 2500, 4999}));
}

} // namespace
