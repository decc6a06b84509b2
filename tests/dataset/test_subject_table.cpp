// SPDX-License-Identifier: GPL-3.0-or-later
//
// The table of subjects: rows, their cells, the choice of files, readiness and removal.
#include "dataset/plugin_settings.h"
#include "tests/gui_test.h"
#include "tests/support/as_read.h"
#include "tests/support/dataset_fixture.h"
#include "tests/support/other_user.h"

#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QStandardItemModel>
#include <QTableView>
#include <QTest>

#include <gmock/gmock.h>

namespace
{

using testing::ElementsAre;
using testing::IsEmpty;

class Table : public DatasetFixture
{
protected:
    QComboBox *profiles() { return find<QComboBox>("cBox_connectivityProfile"); }
    QStringList profileNames()
    {
        QStringList names;
        for (int item = 0; item < profiles()->count(); ++item)
            names.append(profiles()->itemText(item));
        return names;
    }
    /// The editor of the first row's name, opened by the key for it; null when it does not open.
    QLineEdit *editNameByKey()
    {
        auto *const table = find<QTableView>("tbl_Subjects");
        dialog().activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&dialog()));
        table->setFocus();
        table->setCurrentIndex(model().index(0, NameColumn));
        QTest::keyClick(table, Qt::Key_F2);
        return table->viewport()->findChild<QLineEdit *>();
    }
    QString counter() { return find<QLabel>("lbl_SubjectsCounter")->text(); }
    bool isLocked(int row)
    {
        bool locked = true;
        for (int column = VmrColumn; column <= PrtColumn; ++column)
            locked = locked && !cell(row, column)->isEnabled();
        return locked;
    }
    /// A protocol with one condition.
    fake_host::Protocol protocol()
    {
        fake_host::Protocol result;
        result.name = "task";
        result.conditions = {{"A", {{1, 10}, {21, 30}}}, {"B", {{11, 20}}}};
        return result;
    }
    QString addLinkedVtc(const QString &name)
    {
        const QString prt = addProtocol(name + ".prt", protocol());
        fake_host::Vtc vtc = fake_host::makeVtc({{{50, 58}, {60, 68}, {70, 78}}}, 1, 40);
        vtc.linkProtocol(prt.toLatin1().toStdString());
        return addVtc(name, vtc);
    }
    void useProtocol() { click("cbox_UseProtocol"); }
};

TEST_F(Table, AddSubjectMakesARowOfWidgets)
{
    EXPECT_EQ(addRow(), 0);
    EXPECT_EQ(counter(), "1");
    EXPECT_TRUE(find<QPushButton>("btn_RemoveSubject")->isEnabled());
    EXPECT_FALSE(find<QPushButton>("btn_RemoveAll")->isEnabled());

    EXPECT_EQ(cell(0, NameColumn), nullptr);
    ASSERT_NE(vmrBox(0), nullptr);
    for (int column = VmrColumn; column <= PrtColumn; ++column) {
        EXPECT_EQ(cell(0, column)->property("row"), QVariant(0));
        EXPECT_EQ(cell(0, column)->property("row").type(), QVariant::Int);
        EXPECT_EQ(cell(0, column)->isEnabled(), column != PrtColumn);
    }
    for (int column = VtcColumn; column <= PrtColumn; ++column) {
        QPushButton *const button = fileButton(0, column);
        ASSERT_NE(button, nullptr);
        EXPECT_EQ(button->text(), "select");
        EXPECT_TRUE(button->isFlat());
        EXPECT_FALSE(button->autoDefault());
    }
    EXPECT_EQ(addRow(), 1);
    EXPECT_EQ(counter(), "2");
    EXPECT_EQ(cell(1, VtcColumn)->property("row"), 1);
    EXPECT_EQ(subject(1).name(), "Subject 2");
}

TEST_F(Table, NewRowsKnowThePlugin)
{
    auto *const plugin = reinterpret_cast<Tessera_Plugin *>(this);
    dialog().plugin = plugin; // only handed on
    addRow();
    EXPECT_EQ(subject(0).plugin, plugin);
}

TEST_F(Table, VmrBoxListsTheDocuments)
{
    host.addVmr("/data/zweites.vmr");
    host.documents.push_back({"/data/run.fmr", 1, {}});
    addRow();
    const QComboBox *const box = vmrBox(0);
    ASSERT_EQ(box->count(), 3);
    EXPECT_EQ(box->currentIndex(), 0);
    EXPECT_EQ(box->minimumContentsLength(), 1);
    EXPECT_EQ(int(box->sizeAdjustPolicy()), 2); // to the minimum contents length

    EXPECT_EQ(box->itemText(0), "select");
    EXPECT_FALSE(box->itemData(0, Qt::UserRole).isValid());
    const QStandardItem *const select =
        qobject_cast<const QStandardItemModel *>(box->model())->item(0);
    EXPECT_EQ(select->font().weight(), 75);
    EXPECT_FALSE(select->isSelectable());

    for (const auto &[id, name] : {std::pair{0, "brain.vmr"}, std::pair{1, "zweites.vmr"}}) {
        const int item = box->findData(id, Qt::UserRole);
        ASSERT_GT(item, 0) << name;
        EXPECT_EQ(box->itemText(item), name);
        EXPECT_EQ(box->itemData(item, Qt::ToolTipRole), name);
    }
}

TEST_F(Table, ToolTipsShowFileNamesAsTheyAreWritten)
{
    host.addVmr("/data/<b>left & right.vmr");
    addRow();
    const int document = vmrBox(0)->findText("<b>left & right.vmr");
    ASSERT_GT(document, 0);
    EXPECT_EQ(asRead(vmrBox(0)->itemData(document, Qt::ToolTipRole).toString()),
              "<b>left & right.vmr");

    const QString vtc = addLinkedVtc("<b>run.vtc");
    chooseFile(0, VtcColumn, vtc);
    EXPECT_EQ(asRead(fileButton(0, VtcColumn)->toolTip()), "<b>run.vtc");
    EXPECT_EQ(asRead(fileButton(0, PrtColumn)->toolTip()), vtc + ".prt");
    useProtocol();
    chooseFile(0, PrtColumn, addProtocol("<i>task.prt", protocol()));
    EXPECT_EQ(asRead(fileButton(0, PrtColumn)->toolTip()), "<i>task.prt");
    chooseFile(0, VoiColumn, addVois("&lt;set.voi"));
    EXPECT_EQ(asRead(fileButton(0, VoiColumn)->toolTip()), "&lt;set.voi");
}

TEST_F(Table, VmrBoxOfAnEmptyWorkspaceHasNoDocument)
{
    host.documents.clear();
    addRow();
    EXPECT_EQ(vmrBox(0)->count(), 1);
}

TEST_F(Table, ChoosingAVmrMakesItCurrentInTheHost)
{
    host.addVmr("/data/second.vmr");
    addRow();
    addRow();
    host.forgetCalls();
    const int item = vmrBox(0)->findData(0, Qt::UserRole);
    vmrBox(0)->setCurrentIndex(item);
    EXPECT_THAT(host.calls, ElementsAre("zqSetAsCurrentDocument(0)"));
    EXPECT_EQ(subject(0).documentId(), -1); // only when the row is ready
    vmrBox(1)->setCurrentIndex(vmrBox(1)->findData(1, Qt::UserRole));
    EXPECT_EQ(host.currentDocument, 1);
}

TEST_F(Table, ChoosingAVmrWithTheKeyboard)
{
    addRow();
    dialog().activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog()));
    vmrBox(0)->setFocus();
    QTest::keyClick(vmrBox(0), Qt::Key_Down);
    EXPECT_EQ(vmrBox(0)->currentIndex(), 1);
}

/// As a host can call slots by their names.
TEST_F(Table, SlotsLeaveOtherSendersAlone)
{
    dialog().openVTCFile(false);
    dialog().openVOIFile(false);
    dialog().openPRTFile(false);
    dialog().vmrDocumentChanged(0);
    QComboBox other;
    other.addItems({"first", "second"});
    QObject::connect(&other, QOverload<int>::of(&QComboBox::currentIndexChanged), &dialog(),
                     &Tessera::vmrDocumentChanged);
    other.setCurrentIndex(1);
    EXPECT_THAT(host.calls, IsEmpty());
    EXPECT_EQ(model().rowCount(), 0);
}

struct FileSlot {
    int column;
    const char *caption;
    const char *filter;
    const char *unreadable;
    const char *signature;
};

const FileSlot fileSlots[] = {
    {VtcColumn, "Select VTC", "Volume Time Course (*.vtc)", "Unable to read the selected VTC.",
     "void __cdecl Tessera::openVTCFile(bool)"},
    {VoiColumn, "Select VOI", "Volume of Interest (*.voi)", "Unable to read the selected VOI.",
     "void __cdecl Tessera::openVOIFile(bool)"},
    {PrtColumn, "Select PRT", "Protocol File (*.prt)", "Unable to read the selected PRT.",
     "void __cdecl Tessera::openPRTFile(bool)"},
};

class TableFileSlot : public Table, public testing::WithParamInterface<FileSlot>
{
protected:
    /// A row in which the slot under test can be reached, and a file for it.
    void prepare()
    {
        addRow();
        showTab(find<QTableView>("tbl_Subjects"));
        if (GetParam().column == PrtColumn) {
            useProtocol();
            chooseFile(0, VtcColumn, addVtc("other.vtc"));
        }
        const char *const names[] = {"", "", "run.vtc", "set.voi", "task.prt"};
        const QString name = names[GetParam().column];
        path = GetParam().column == VtcColumn   ? addVtc(name)
               : GetParam().column == VoiColumn ? addVois(name)
                                                : addProtocol(name, protocol());
    }
    QString stored() { return subject(0).describe() + subject(0).prtFile; }
    void press() { QTest::mouseClick(fileButton(0, GetParam().column), Qt::LeftButton); }
    QString path;
};

INSTANTIATE_TEST_SUITE_P(Slots, TableFileSlot, testing::ValuesIn(fileSlots),
                         [](const auto &test) { return std::string(test.param.caption + 7); });

TEST_P(TableFileSlot, AsksForAFileOfItsKind)
{
    prepare();
    modals.expectFile(path, [this](QDialog &dialog) {
        auto &files = static_cast<QFileDialog &>(dialog);
        EXPECT_EQ(files.windowTitle(), GetParam().caption);
        EXPECT_EQ(files.nameFilters(), QStringList{GetParam().filter});
        EXPECT_EQ(files.fileMode(), QFileDialog::ExistingFile);
        EXPECT_EQ(files.acceptMode(), QFileDialog::AcceptOpen);
        EXPECT_EQ(files.parentWidget(), &this->dialog());
    });
    press();
    QPushButton *const button = fileButton(0, GetParam().column);
    EXPECT_EQ(button->text(), "ok");
    EXPECT_EQ(button->toolTip(), QFileInfo(path).fileName());
}

TEST_P(TableFileSlot, CancellingChangesNothing)
{
    prepare();
    const QString before = stored();
    host.forgetCalls();
    modals.expectFileCancel();
    press();
    EXPECT_EQ(stored(), before);
    EXPECT_EQ(fileButton(0, GetParam().column)->text(), "select");
    EXPECT_THAT(host.calls, IsEmpty());
    EXPECT_EQ(profileNames(), QStringList{"All"});
}

TEST_P(TableFileSlot, FileThatVanishesAfterTheChoiceIsAnError)
{
    prepare();
    const QString before = stored();
    host.forgetCalls();
    modals.expectFileThen(path, [this] { QFile::remove(path); });
    modals.expectMessage("Error", GetParam().unreadable);
    press();
    EXPECT_EQ(stored(), before);
    EXPECT_EQ(fileButton(0, GetParam().column)->text(), "select");
    EXPECT_THAT(host.calls, IsEmpty());
}

TEST_P(TableFileSlot, FileThatMayNotBeReadIsAnError)
{
    prepare();
    const OtherUser nobody; // root reads everything
    const QTemporaryDir own;
    path = own.filePath(QFileInfo(path).fileName());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.close();
    ASSERT_TRUE(file.setPermissions({}));
    modals.expectFile(path);
    modals.expect<QMessageBox>([this](QMessageBox &box) {
        EXPECT_EQ(box.text(), GetParam().unreadable);
        EXPECT_EQ(box.windowTitle(), "Error");
        EXPECT_EQ(box.icon(), QMessageBox::Warning);
        EXPECT_EQ(box.parentWidget(), &dialog());
        EXPECT_TRUE(box.isModal());
        EXPECT_TRUE(box.windowFlags() & Qt::MSWindowsFixedSizeDialogHint);
        EXPECT_EQ(box.windowFlags() & Qt::WindowType_Mask, Qt::Dialog);
        box.accept();
    });
    press();
    EXPECT_EQ(fileButton(0, GetParam().column)->text(), "select");
    file.setPermissions(QFile::ReadOwner | QFile::WriteOwner);
}

TEST_P(TableFileSlot, MainDialogClosedUnderTheFileDialogEndsTheSlot)
{
    prepare();
    modals.expect<QFileDialog>([this](QFileDialog &) { closeDialog(); });
    press();
    EXPECT_EQ(modals.remaining(), 0u);
}

TEST_P(TableFileSlot, MainDialogClosedUnderTheErrorEndsTheSlot)
{
    prepare();
    modals.expectFileThen(path, [this] { QFile::remove(path); });
    modals.expect<QMessageBox>([this](QMessageBox &) { closeDialog(); });
    press();
    EXPECT_EQ(modals.remaining(), 0u);
}

TEST_P(TableFileSlot, LogsItsSignatureFirst)
{
    prepare();
    PluginSettings::instance()->verboseLogging = true;
    takeMessages();
    modals.expectFileCancel();
    press();
    PluginSettings::instance()->verboseLogging = false;
    const QVector<LoggedMessage> messages = takeMessages();
    ASSERT_FALSE(messages.isEmpty());
    EXPECT_EQ(messages.first().text, GetParam().signature);
}

TEST_F(Table, FileDialogBeginsWhereTheLastOneEnded)
{
    addRow();
    const QString vtc = addVtc("run.vtc");
    modals.expect<QFileDialog>([&](QFileDialog &files) {
        files.setDirectory(folder.path());
        ModalDriver::enterFile(files, vtc);
    });
    QTest::mouseClick(fileButton(0, VtcColumn), Qt::LeftButton);
    modals.expect<QFileDialog>([this](QFileDialog &files) {
        EXPECT_EQ(files.directory(), QDir(folder.path()));
        files.reject();
    });
    QTest::mouseClick(fileButton(0, VoiColumn), Qt::LeftButton);
}

TEST_F(Table, FileOfAMissingNameDoesNotLeaveTheFileDialog)
{
    addRow();
    modals.expect<QFileDialog>([this](QFileDialog &files) {
        files.findChild<QLineEdit *>("fileNameEdit")->setText(folder.filePath("missing.vtc"));
        modals.expect<QMessageBox>([](QMessageBox &box) { box.accept(); }); // "File not found"
        files.metaObject()->invokeMethod(&files, "accept");
        files.reject();
    });
    QTest::mouseClick(fileButton(0, VtcColumn), Qt::LeftButton);
    EXPECT_EQ(subject(0).vtcFile(), "");
}

TEST_F(Table, VtcWithoutProtocolOnlyEnablesTheProtocolButton)
{
    addRow();
    const QString vtc = addVtc("run.vtc");
    chooseFile(0, VtcColumn, vtc);
    EXPECT_EQ(subject(0).vtcFile(), vtc);
    EXPECT_TRUE(fileButton(0, PrtColumn)->isEnabled());
    EXPECT_EQ(fileButton(0, PrtColumn)->text(), "select");
    EXPECT_FALSE(subject(0).hasProtocol());
    EXPECT_TRUE(subject(0).editable());
    EXPECT_THAT(host.log, IsEmpty());
    EXPECT_EQ(profileNames(), QStringList{"All"});
}

TEST_F(Table, VtcWithProtocolLinksIt)
{
    addRow();
    const QString vtc = addLinkedVtc("run.vtc");
    takeMessages();
    chooseFile(0, VtcColumn, vtc);
    EXPECT_EQ(fileButton(0, VtcColumn)->text(), "ok");
    EXPECT_EQ(fileButton(0, PrtColumn)->text(), "ok - autoloaded");
    EXPECT_EQ(fileButton(0, PrtColumn)->toolTip(), vtc + ".prt");
    EXPECT_TRUE(subject(0).protocolAutoloaded());
    EXPECT_TRUE(subject(0).hasProtocol());
    EXPECT_EQ(subject(0).prtFile, vtc + ".prt");
    EXPECT_EQ(subject(0).protocol().name, "task");
    bool told = false; // whether verbose logging is on or not
    for (const LoggedMessage &message : takeMessages())
        told = told || message.text == "Linked proto file: " + vtc + ".prt";
    EXPECT_TRUE(told);
}

TEST_F(Table, VtcWithoutProtocolLeavesTheOneThatWasLinkedBefore)
{
    addRow();
    const QString linked = addLinkedVtc("run.vtc");
    chooseFile(0, VtcColumn, linked);
    const QString plain = addVtc("plain.vtc");
    chooseFile(0, VtcColumn, plain);
    EXPECT_EQ(subject(0).vtcFile(), plain);
    EXPECT_EQ(fileButton(0, VtcColumn)->toolTip(), "plain.vtc");
    EXPECT_EQ(fileButton(0, PrtColumn)->text(), "ok - autoloaded");
    EXPECT_EQ(fileButton(0, PrtColumn)->toolTip(), linked + ".prt");
    EXPECT_TRUE(fileButton(0, PrtColumn)->isEnabled());
    EXPECT_TRUE(subject(0).protocolAutoloaded());
    EXPECT_TRUE(subject(0).hasProtocol());
    EXPECT_EQ(subject(0).prtFile, linked + ".prt");
    EXPECT_EQ(subject(0).protocol().name, "task");

    // One that links another protocol takes its place.
    const QString other = addLinkedVtc("other.vtc");
    chooseFile(0, VtcColumn, other);
    EXPECT_EQ(fileButton(0, PrtColumn)->text(), "ok - autoloaded");
    EXPECT_EQ(fileButton(0, PrtColumn)->toolTip(), other + ".prt");
    EXPECT_EQ(subject(0).prtFile, other + ".prt");
}

TEST_F(Table, VtcWithoutProtocolLeavesTheOneThatWasChosenByHand)
{
    addRow();
    useProtocol();
    chooseFile(0, VtcColumn, addVtc("run.vtc"));
    chooseFile(0, PrtColumn, addProtocol("task.prt", protocol()));
    chooseFile(0, VtcColumn, addVtc("plain.vtc"));
    EXPECT_EQ(fileButton(0, PrtColumn)->text(), "ok");
    EXPECT_EQ(fileButton(0, PrtColumn)->toolTip(), "task.prt");
    EXPECT_EQ(subject(0).prtFile, "task.prt");
    EXPECT_TRUE(subject(0).hasProtocol());
    EXPECT_FALSE(subject(0).protocolAutoloaded());
}

TEST_F(Table, VtcThatTheHostRefusesStaysChosenWithoutProtocol)
{
    addRow();
    const QString vtc = addLinkedVtc("run.vtc");
    host.vtcs.clear();
    chooseFile(0, VtcColumn, vtc);
    EXPECT_EQ(subject(0).vtcFile(), vtc);
    EXPECT_EQ(fileButton(0, VtcColumn)->text(), "ok");
    EXPECT_EQ(fileButton(0, PrtColumn)->text(), "select");
    EXPECT_TRUE(fileButton(0, PrtColumn)->isEnabled());
    EXPECT_EQ(hostLog(), QStringList{"Plugin> Failed to load VTC file. Please retry."});
}

TEST_F(Table, VoiFileMustBeOfOneMillimetre)
{
    addRow();
    fake_host::VoiSet set;
    set.vois = {{"V", {{50, 60, 70}}}};
    set.resolution = {1.0f, 2.0f, 1.0f};
    const QString coarse = addVois("coarse.voi", set);
    modals.expectFile(coarse);
    modals.expectMessage("Error", "VOI's resolution must be 1.0mm.");
    QTest::mouseClick(fileButton(0, VoiColumn), Qt::LeftButton);
    EXPECT_EQ(subject(0).voiFile(), "");
    EXPECT_EQ(fileButton(0, VoiColumn)->text(), "select");
    EXPECT_THAT(host.log, IsEmpty());
}

TEST_F(Table, MainDialogClosedUnderTheMessageOfTheVoiFileEndsTheSlot)
{
    addRow();
    const QString vois = addVois("set.voi");
    host.voiSets.clear();
    modals.expectFile(vois);
    modals.expect<QMessageBox>([this](QMessageBox &) { closeDialog(); });
    QTest::mouseClick(fileButton(0, VoiColumn), Qt::LeftButton);
    EXPECT_EQ(modals.remaining(), 0u);
}

TEST_F(Table, VoiFileThatTheHostRefusesGetsTheSameMessage)
{
    addRow();
    const QString vois = addVois("set.voi");
    host.voiSets.clear();
    modals.expectFile(vois);
    modals.expectMessage("Error", "VOI's resolution must be 1.0mm.");
    QTest::mouseClick(fileButton(0, VoiColumn), Qt::LeftButton);
    EXPECT_EQ(subject(0).voiFile(), "");
    EXPECT_EQ(hostLog(), QStringList{"Plugin> Could not load VOI file. Please retry."});
}

TEST_F(Table, ProtocolChosenByHandIsKeptByItsBareName)
{
    addRow();
    useProtocol();
    chooseFile(0, VtcColumn, addVtc("run.vtc"));
    chooseFile(0, PrtColumn, addProtocol("task.prt", protocol()));
    EXPECT_EQ(subject(0).prtFile, "task.prt");
    EXPECT_TRUE(subject(0).hasProtocol());
    EXPECT_FALSE(subject(0).protocolAutoloaded());
    EXPECT_EQ(subject(0).protocol().volumeNames.values(), (QStringList{"A", "B", "A"}));
}

TEST_F(Table, ProtocolThatCannotBeParsedIsMarkedAllTheSame)
{
    addRow();
    useProtocol();
    chooseFile(0, VtcColumn, addVtc("run.vtc"));
    const QString prt = addProtocol("task.prt", protocol());
    host.fail("zqGetProtocol", fake_host::Failure::Zero);
    modals.expectFile(prt);
    modals.expectMessage("Error", "Faild to parse and link the selected protocol file.");
    QTest::mouseClick(fileButton(0, PrtColumn), Qt::LeftButton);
    EXPECT_EQ(fileButton(0, PrtColumn)->text(), "ok");
    EXPECT_EQ(fileButton(0, PrtColumn)->toolTip(), "task.prt");
    EXPECT_FALSE(subject(0).hasProtocol());
    EXPECT_EQ(subject(0).prtFile, "");
    EXPECT_EQ(hostLog(), QStringList{"Plugin> Trouble with PRT file. Please retry."});
}

/// The host knows its files by the UTF-8 of their paths.
TEST_F(Table, FilesOfAnyNameReachTheHost)
{
    addRow();
    useProtocol();
    const QString greek = QString::fromUtf8("\u03b1\u03b2 \u6d77");
    chooseFile(0, VtcColumn, addVtc(greek + ".vtc"));
    const QString prt = addProtocol(greek + ".prt", protocol());
    chooseFile(0, PrtColumn, prt);
    EXPECT_THAT(host.calls, testing::Contains("zqLoadProtocol(" + hostPath(prt) + ")"));
    EXPECT_EQ(subject(0).prtFile, greek + ".prt");
    const QString vois = addVois(greek + ".voi");
    chooseFile(0, VoiColumn, vois);
    EXPECT_THAT(host.calls, testing::Contains("zqLoadVOIs(" + hostPath(vois) + ")"));
    EXPECT_EQ(subject(0).voiFile(), vois);
    EXPECT_TRUE(subject(0).dataLoaded);
}

// Readiness

TEST_F(Table, RowIsReadyWithVtcAndVoiInEitherOrder)
{
    const QString vtc = addVtc("run.vtc");
    const QString vois = addVois("set.voi");
    addRow();
    addRow();
    finishRow(0, vtc, vois);
    chooseFile(1, VoiColumn, vois);
    EXPECT_FALSE(isLocked(1));
    chooseFile(1, VtcColumn, vtc);
    for (int row = 0; row < 2; ++row) {
        EXPECT_TRUE(isLocked(row)) << row;
        EXPECT_FALSE(subject(row).editable());
        EXPECT_TRUE(subject(row).dataLoaded);
        EXPECT_EQ(subject(row).timeseries().size(), 12u);
        EXPECT_EQ(profiles()->findData(row, Qt::UserRole), row + 1);
    }
    EXPECT_EQ(profileNames(), (QStringList{"All", "Subject 1", "Subject 2"}));
}

TEST_F(Table, ReadyRowLocksTheUnsupportedOptions)
{
    addReadyRow();
    EXPECT_TRUE(find<QWidget>("tab_Connectivity")->isEnabled());
    EXPECT_FALSE(find<QWidget>("tab_Graphs")->isEnabled());
    for (const char *name :
         {"rbtn_Covariance", "rbtn_Tangent", "rdBtn_Dynamic", "btn_ConfigureDynamic",
          "rbtn_VoxelToVoxel", "cbox_ConfigureVOI", "btn_Compute"})
        EXPECT_FALSE(find<QWidget>(name)->isEnabled()) << name;
    for (const char *name : {"btn_ConfigureVOIs", "rbtn_SeedToSeed", "rdBtn_Static",
                             "rbtn_Correlation", "rbtn_PartialCorrelation"})
        EXPECT_TRUE(find<QWidget>(name)->isEnabled()) << name;
    EXPECT_EQ(profiles()->currentIndex(), 0);
    EXPECT_EQ(find<QPushButton>("btn_Compute")->text(), "Compute All");
}

TEST_F(Table, EveryRowThatBecomesReadyLocksThemAnew)
{
    const std::vector<const char *> locked = {
        "rbtn_Covariance",      "rbtn_Tangent",      "rdBtn_Dynamic", "rbtn_VoxelToVoxel",
        "btn_ConfigureDynamic", "cbox_ConfigureVOI", "btn_Compute"};
    for (int row = 0; row < 3; ++row) {
        addRow();
        for (const char *name : locked)
            find<QWidget>(name)->setEnabled(true);
        find<QWidget>("btn_ConfigureVOIs")->setEnabled(false);
        finishRow(row, addVtc("run.vtc"), addVois("set.voi"));
        for (const char *name : locked)
            EXPECT_FALSE(find<QWidget>(name)->isEnabled()) << name << " with row " << row;
        EXPECT_TRUE(find<QWidget>("btn_ConfigureVOIs")->isEnabled()) << row;
        // As a user meets it: the profile of the row before can be computed until then.
        selectProfile(row);
        EXPECT_TRUE(find<QWidget>("btn_Compute")->isEnabled()) << row;
    }
}

TEST_F(Table, WithProtocolALinkedOneIsEnough)
{
    useProtocol();
    addRow();
    finishRow(0, addLinkedVtc("run.vtc"), addVois("set.voi"));
    EXPECT_TRUE(isLocked(0));
    EXPECT_FALSE(subject(0).editable());
}

TEST_F(Table, WithProtocolTheLastChoiceOfOneLeavesTheNameOpen)
{
    useProtocol();
    addRow();
    finishRow(0, addVtc("run.vtc"), addVois("set.voi"));
    EXPECT_FALSE(isLocked(0));
    EXPECT_EQ(profileNames(), QStringList{"All"});
    chooseFile(0, PrtColumn, addProtocol("task.prt", protocol()));
    EXPECT_TRUE(isLocked(0));
    EXPECT_TRUE(subject(0).editable());
    EXPECT_TRUE(subject(0).dataLoaded);
    rename(0, "Ann");
    EXPECT_EQ(profileNames(), (QStringList{"All", "Ann"}));
}

TEST_F(Table, WithProtocolChosenBeforeTheVoisTheVoisLockTheName)
{
    useProtocol();
    addRow();
    chooseFile(0, VtcColumn, addVtc("run.vtc"));
    chooseFile(0, PrtColumn, addProtocol("task.prt", protocol()));
    EXPECT_FALSE(isLocked(0));
    chooseFile(0, VoiColumn, addVois("set.voi"));
    EXPECT_TRUE(isLocked(0));
    EXPECT_FALSE(subject(0).editable());
}

TEST_F(Table, ReadinessIsLookedAtAfterACancelledDialogToo)
{
    useProtocol();
    addRow();
    finishRow(0, addVtc("run.vtc"), addVois("set.voi"));
    EXPECT_FALSE(isLocked(0));
    useProtocol(); // off again: the row has all it needs, and waits for a slot to look
    EXPECT_FALSE(isLocked(0));
    modals.expectFileCancel();
    QTest::mouseClick(fileButton(0, VtcColumn), Qt::LeftButton);
    EXPECT_TRUE(isLocked(0));
    EXPECT_TRUE(subject(0).dataLoaded);
}

TEST_F(Table, DocumentIsReadWhenTheRowIsReady)
{
    host.addVmr("/data/second.vmr");
    addRow();
    vmrBox(0)->setCurrentIndex(vmrBox(0)->findData(1, Qt::UserRole));
    host.currentDocument = 0;
    finishRow(0, addVtc("run.vtc"), addVois("set.voi"));
    EXPECT_EQ(subject(0).documentId(), 1);
    EXPECT_EQ(host.currentDocument, 1);
    addRow();
    finishRow(1, addVtc("run.vtc"), addVois("set.voi"));
    EXPECT_EQ(subject(1).documentId(), 0) << "the box stayed on select";
}

struct LoadFailure {
    const char *name;
    const char *function;
    int nthCall; ///< from the choice of the last file on
    const char *lastLogLine;
    const char *message; ///< of the host
};

std::ostream &operator<<(std::ostream &out, const LoadFailure &failure)
{
    return out << failure.name;
}

const LoadFailure loadFailures[] = {
    {"NoVmr", "zqGetCurrentVMR", 1, "\n** Loading subject data: Subject 1...",
     "This plugin requires a VMR to operate. Make sure that a VMR is open and that its window is "
     "selected."},
    {"VtcNotLinked", "zqLinkVTCToCurrentVMR", 1, "Plugin> Failed to load VTC file. Please retry.",
     nullptr},
    {"VtcHeader", "zqGetHeaderOfVTCOfCurrentVMR", 1, "Plugin> Trouble with VTC file. Please retry.",
     nullptr},
    // The first call tests the resolution.
    {"VoiNotLoaded", "zqLoadVOIs", 2, "Plugin> Could not load VOI file. Please retry.", nullptr},
    {"VoiHeader", "zqGetVOIs", 2, "Plugin>  Trouble with VOI. Please retry.", nullptr},
};

class TableLoadFailure : public Table, public testing::WithParamInterface<LoadFailure>
{
};

INSTANTIATE_TEST_SUITE_P(Failures, TableLoadFailure, testing::ValuesIn(loadFailures),
                         [](const auto &test) { return std::string(test.param.name); });

TEST_P(TableLoadFailure, LeavesTheRowLockedWithoutData)
{
    const LoadFailure &failure = GetParam();
    addRow();
    chooseFile(0, VtcColumn, addVtc("run.vtc"));
    host.forgetCalls();
    host.fail(failure.function, fake_host::Failure::Zero, failure.nthCall);
    chooseFile(0, VoiColumn, addVois("set.voi"));
    EXPECT_TRUE(isLocked(0));
    EXPECT_FALSE(subject(0).dataLoaded);
    EXPECT_TRUE(subject(0).timeseries().empty());
    EXPECT_EQ(profileNames(), (QStringList{"All", "Subject 1"}));
    ASSERT_FALSE(host.log.empty());
    EXPECT_EQ(host.log.back(), failure.lastLogLine);
    if (failure.message == nullptr)
        EXPECT_THAT(host.messages, IsEmpty());
    else
        EXPECT_THAT(host.messages, ElementsAre(failure.message));
}

TEST_F(Table, MainDialogClosedUnderTheMessageOfTheHostEndsTheSlot)
{
    addRow();
    chooseFile(0, VtcColumn, addVtc("run.vtc"));
    host.documents.clear();
    host.meanwhile = [this] { closeDialog(); };
    chooseFile(0, VoiColumn, addVois("set.voi"));
    EXPECT_EQ(host.messages.size(), 1u);
}

TEST_F(Table, FileReplacedBetweenChoiceAndLoadIsLoadedAsItIsThen)
{
    addRow();
    const QString vtc = addVtc("run.vtc", 40);
    chooseFile(0, VtcColumn, vtc);
    addVtc("run.vtc", 25);
    chooseFile(0, VoiColumn, addVois("set.voi", 3));
    EXPECT_TRUE(subject(0).dataLoaded);
    ASSERT_EQ(subject(0).timeseries().size(), 3u);
    EXPECT_EQ(subject(0).timeseries().front().cols(), 25);
}

TEST_F(Table, VoisReplacedAfterTheLoadKeepEveryReaderWithinItsData)
{
    addReadyRow();
    addVois("set.voi", 3);
    selectProfile(0); // reads the names anew
    EXPECT_EQ(subject(0).voiNames.size(), 3);
    EXPECT_EQ(find<QComboBox>("cbox_ConfigureVOI")->count(), 4);
    EXPECT_EQ(subject(0).timeseries().size(), 12u);
}

// Names

TEST_F(Table, NameIsEditedInTheTable)
{
    addRow();
    auto *const table = find<QTableView>("tbl_Subjects");
    dialog().activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog()));
    const QPoint place = table->visualRect(model().index(0, NameColumn)).center();
    QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, place);
    QTest::mouseDClick(table->viewport(), Qt::LeftButton, {}, place);
    auto *const editor = table->viewport()->findChild<QLineEdit *>();
    ASSERT_NE(editor, nullptr);
    editor->selectAll();
    QTest::keyClicks(editor, "Ann");
    QTest::keyClick(editor, Qt::Key_Return);
    EXPECT_TRUE(QTest::qWaitFor([this] { return subject(0).name() == "Ann"; }));
    EXPECT_TRUE(dialog().isVisible());
}

TEST_F(Table, EmptyNameInTheEditorKeepsTheOldOne)
{
    addRow();
    const QPointer<QLineEdit> editor = editNameByKey();
    ASSERT_FALSE(editor.isNull());
    editor->clear();
    QTest::keyClick(editor, Qt::Key_Return);
    EXPECT_TRUE(QTest::qWaitFor([&] { return editor.isNull(); }));
    EXPECT_EQ(subject(0).name(), "Subject 1");
}

TEST_F(Table, TabLeadsFromTheNameToTheDocuments)
{
    addRow();
    QLineEdit *const editor = editNameByKey();
    ASSERT_NE(editor, nullptr);
    QTest::keyClicks(editor, "Ann");
    QTest::keyClick(editor, Qt::Key_Tab);
    EXPECT_TRUE(QTest::qWaitFor([this] { return subject(0).name() == "Ann"; }));
    EXPECT_EQ(QApplication::focusWidget(), vmrBox(0));
}

TEST_F(Table, DialogDestroyedWithAnOpenEditor)
{
    addReadyRow();
    subject(0).setEditable(true);
    auto *const table = find<QTableView>("tbl_Subjects");
    dialog().activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog()));
    table->setFocus();
    table->setCurrentIndex(model().index(0, NameColumn));
    table->edit(model().index(0, NameColumn));
    auto *const editor = table->viewport()->findChild<QLineEdit *>();
    ASSERT_NE(editor, nullptr);
    QTest::keyClicks(editor, "Ann");
    closeDialog();
}

TEST_F(Table, NameOfALockedRowIsNotEdited)
{
    addReadyRow();
    auto *const table = find<QTableView>("tbl_Subjects");
    const QPoint place = table->visualRect(model().index(0, NameColumn)).center();
    QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, place);
    QTest::mouseDClick(table->viewport(), Qt::LeftButton, {}, place);
    EXPECT_EQ(table->viewport()->findChild<QLineEdit *>(), nullptr);
}

TEST_F(Table, NameFollowsIntoTheProfileOfItsRow)
{
    const QString vtc = addVtc("run.vtc");
    const QString vois = addVois("set.voi");
    for (int i = 0; i < 3; ++i)
        addRow();
    finishRow(2, vtc, vois); // the first profile is that of the last row
    finishRow(0, vtc, vois);
    rename(2, "last");
    rename(1, "no profile yet");
    rename(0, "first");
    EXPECT_EQ(profileNames(), (QStringList{"All", "last", "first"}));
}

TEST_F(Table, OddNamesGoThroughEverything)
{
    const QString vtc = addVtc("run.vtc");
    const QString vois = addVois("set.voi");
    const QStringList names = {QString(10000, QLatin1Char('n')), QString::fromUtf8("נבדק א"),
                               QStringLiteral("a/b\\c"), QStringLiteral("%1 %s %n"),
                               QStringLiteral("<b>x</b>")};
    for (const QString &name : names) {
        const int row = addRow();
        rename(row, name);
        finishRow(row, vtc, vois);
        EXPECT_TRUE(subject(row).dataLoaded);
        EXPECT_EQ(profiles()->itemText(row + 1), name);
    }
    for (const std::string &line : host.log)
        EXPECT_LT(line.size(), 256u);
    EXPECT_EQ(hostLog().at(3), "\n** Loading subject data: %1 %s %n...");
}

// The protocol column

TEST_F(Table, ProtocolColumnIsShownOnDemand)
{
    addRow();
    const auto *const table = find<QTableView>("tbl_Subjects");
    EXPECT_TRUE(table->isColumnHidden(PrtColumn));
    useProtocol();
    EXPECT_FALSE(table->isColumnHidden(PrtColumn));
    useProtocol();
    EXPECT_TRUE(table->isColumnHidden(PrtColumn));
}

// Removal

TEST_F(Table, RemoveWithoutARowOrASelectionDoesNothing)
{
    addRow();
    find<QTableView>("tbl_Subjects")->setCurrentIndex(QModelIndex());
    click("btn_RemoveSubject");
    EXPECT_EQ(model().rowCount(), 1);
    removeRow(0);
    EXPECT_EQ(model().rowCount(), 0);
    EXPECT_EQ(counter(), "0");
    click("btn_RemoveSubject");
    EXPECT_EQ(model().rowCount(), 0);
}

TEST_F(Table, RemovalTakesTheWidgetsAlongAndRenumbersTheOthers)
{
    for (int i = 0; i < 3; ++i)
        addRow();
    const QPointer<QWidget> gone = cell(0, VtcColumn);
    const QPointer<QWidget> goneBox = cell(0, VmrColumn);
    QWidget *const second = cell(1, VtcColumn);
    QWidget *const third = cell(2, VmrColumn);
    removeRow(0);
    EXPECT_EQ(counter(), "2");
    EXPECT_TRUE(QTest::qWaitFor([&] { return gone.isNull() && goneBox.isNull(); }));
    EXPECT_EQ(cell(0, VtcColumn), second);
    EXPECT_EQ(cell(1, VmrColumn), third);
    for (int row = 0; row < 2; ++row) {
        for (int column = VmrColumn; column <= PrtColumn; ++column)
            EXPECT_EQ(cell(row, column)->property("row"), row);
    }
    chooseFile(1, VtcColumn, addVtc("run.vtc"));
    EXPECT_NE(subject(1).vtcFile(), "");
    EXPECT_EQ(subject(0).vtcFile(), "");
}

TEST_F(Table, RowAddedAfterARemovalCanRepeatAName)
{
    addRow();
    addRow();
    removeRow(0);
    EXPECT_EQ(addRow(), 1);
    EXPECT_EQ(subject(0).name(), "Subject 2");
    EXPECT_EQ(subject(1).name(), "Subject 2");
}

TEST_F(Table, RemovalTakesTheProfileAlong)
{
    const QString vtc = addVtc("run.vtc");
    const QString vois = addVois("set.voi");
    for (int i = 0; i < 4; ++i)
        addRow();
    finishRow(3, vtc, vois);
    finishRow(1, vtc, vois);
    finishRow(0, vtc, vois);
    ASSERT_EQ(profileNames(), (QStringList{"All", "Subject 4", "Subject 2", "Subject 1"}));
    removeRow(1);
    EXPECT_EQ(profileNames(), (QStringList{"All", "Subject 4", "Subject 1"}));
    EXPECT_EQ(profiles()->itemData(0), -1);
    EXPECT_EQ(profiles()->itemData(1), 2);
    EXPECT_EQ(profiles()->itemData(2), 0);
    removeRow(1); // it was no profile
    EXPECT_EQ(profiles()->itemData(1), 1);
    rename(1, "Ann");
    EXPECT_EQ(profileNames(), (QStringList{"All", "Ann", "Subject 1"}));
}

TEST_F(Table, RemovalOfTheSelectedProfileSelectsAnother)
{
    const QString vtc = addVtc("run.vtc");
    const QString vois = addVois("set.voi");
    for (int i = 0; i < 3; ++i)
        finishRow(addRow(), vtc, vois);
    subject(2).setMeasure(2);
    selectProfile(1);
    EXPECT_TRUE(find<QAbstractButton>("rbtn_Correlation")->isChecked());
    removeRow(1);
    EXPECT_EQ(profiles()->currentText(), "Subject 3");
    EXPECT_TRUE(find<QAbstractButton>("rbtn_PartialCorrelation")->isChecked());
    click("rbtn_NegativeMtx");
    EXPECT_EQ(subject(1).matrixValues(), 2);
    EXPECT_EQ(subject(0).matrixValues(), 0);
    removeRow(1);
    removeRow(0);
    EXPECT_EQ(profiles()->currentText(), "All");
    EXPECT_EQ(find<QPushButton>("btn_Compute")->text(), "Compute All");
}

TEST_F(Table, RemovalBeforeTheSelectedProfileKeepsItSelected)
{
    const QString vtc = addVtc("run.vtc");
    const QString vois = addVois("set.voi");
    for (int i = 0; i < 3; ++i)
        finishRow(addRow(), vtc, vois);
    selectProfile(2);
    removeRow(0);
    EXPECT_EQ(profiles()->currentText(), "Subject 3");
    click("rbtn_PositiveMtx");
    EXPECT_EQ(subject(1).matrixValues(), 1);
    EXPECT_EQ(subject(0).matrixValues(), 0);
}

TEST_F(Table, RemovalOfARowThatIsNoProfileKeepsTheSelection)
{
    const QString vtc = addVtc("run.vtc");
    const QString vois = addVois("set.voi");
    addRow();
    addRow();
    finishRow(1, vtc, vois);
    selectProfile(1);
    removeRow(0);
    click("chkBox_ComputeMST");
    EXPECT_FALSE(subject(0).computeMst());
    EXPECT_EQ(profiles()->currentText(), "Subject 2");
}

TEST_F(Table, RemoveAllIsOutOfReachAndEmptiesTheTable)
{
    const QString vtc = addVtc("run.vtc");
    const QString vois = addVois("set.voi");
    for (int i = 0; i < 4; ++i)
        addRow();
    finishRow(2, vtc, vois);
    selectProfile(2);
    EXPECT_FALSE(find<QPushButton>("btn_RemoveAll")->isEnabled());
    dialog().removeAllSubjects(false);
    EXPECT_EQ(model().rowCount(), 0);
    EXPECT_EQ(counter(), "0");
    EXPECT_EQ(profileNames(), QStringList{"All"});
}

TEST_F(Table, RemoveAllOfRowsWithoutProfilesLeavesTheSettingsAlone)
{
    addRow();
    addRow();
    find<QPushButton>("btn_Compute")->setEnabled(false);
    dialog().removeAllSubjects(false);
    EXPECT_EQ(model().rowCount(), 0);
    EXPECT_EQ(profileNames(), QStringList{"All"});
    EXPECT_FALSE(find<QPushButton>("btn_Compute")->isEnabled());
}

TEST_F(Table, AddSubjectLogsItsSignature)
{
    dialog();
    PluginSettings::instance()->verboseLogging = true;
    takeMessages();
    addRow();
    vmrBox(0)->setCurrentIndex(1);
    PluginSettings::instance()->verboseLogging = false;
    const QVector<LoggedMessage> messages = takeMessages();
    ASSERT_GE(messages.size(), 2);
    EXPECT_EQ(messages.at(0).text, "void __cdecl Tessera::addSubject(bool)");
    EXPECT_EQ(messages.last().text, "documentID = 0");
}

TEST_F(Table, ChosenFilesAreLogged)
{
    addRow();
    const QString vtc = addVtc("run.vtc");
    const QString vois = addVois("set.voi");
    PluginSettings::instance()->verboseLogging = true;
    takeMessages();
    finishRow(0, vtc, vois);
    PluginSettings::instance()->verboseLogging = false;
    QStringList texts;
    for (const LoggedMessage &message : takeMessages())
        texts.append(message.text);
    EXPECT_TRUE(texts.contains("Selected VTC: " + vtc));
    EXPECT_TRUE(texts.contains("Selected VOI: " + vois));
}

} // namespace
