// SPDX-License-Identifier: GPL-3.0-or-later
//
// The form of the main dialog, and what its controls do.
#include "dataset/plugin_settings.h"
#include "tests/gui_test.h"
#include "tests/support/dataset_fixture.h"
#include "tests/support/form_text.h"

#include <QAccessible>
#include <QGroupBox>
#include <QHeaderView>
#include <QMetaMethod>
#include <QRadioButton>
#include <QRegularExpression>
#include <QTabBar>
#include <QTabWidget>
#include <QTableView>
#include <QTest>

namespace
{

const char *const form = R"form(
Tessera Tessera "Tessera Analysis Plugin" 533x740
  QVBoxLayout verticalLayout spacing 6 margins 11 11 11 11
    QTabWidget tabWidget currentIndex 0
      QWidget tab_Data tab "Data"
        QVBoxLayout verticalLayout_2 spacing 6 margins 11 11 11 11
          QLabel label "<html><head/><body><p><span style=" font-size:9pt;">Begin by loading some subject data; that is a combination of VTC/VOI files.</span></p></body></html>" styleSheet "background-color: #feffbb;\npadding: 5px;\ncolor: rgb(0, 0, 0);" wordWrap policy Preferred/Preferred
          QHBoxLayout horizontalLayout_2 spacing 6
            QLabel lbl_Subjects "<html><head/><body><p><span style=" font-weight:600;">Dataset</span></p></body></html>"
            QLabel lbl_SubjectsCounter "0" alignment AlignTrailing|AlignVCenter
          QTableView tbl_Subjects accessibleName "Dataset" no tabKeyNavigation selectionMode SingleSelection
          QCheckBox cbox_UseProtocol "use protocol"
          QFrame line_2 frameShape HLine frameShadow Sunken policy Minimum/Fixed
          QHBoxLayout horizontalLayout_3 spacing 6
            QPushButton btn_RemoveAll "Remove All" flat disabled
            spacer 40x20 Expanding/Minimum
            QPushButton btn_AddSubject "Add subject" flat
            QPushButton btn_RemoveSubject "Remove selected" flat disabled
      QWidget tab_Connectivity disabled tab "Functional Connectivity"
        QVBoxLayout verticalLayout_3 spacing 6 margins 11 11 11 11
          QHBoxLayout horizontalLayout_4 spacing 6
            QLabel label_4 "<html><head/><body><p><span style=" font-size:9pt;">Estimate the connectivity for</span></p></body></html>" minimumSize 180x0 styleSheet "background-color: #feffbb;\npadding: 5px;\ncolor: rgb(0, 0, 0);" wordWrap policy Preferred/Preferred
            QComboBox cBox_connectivityProfile minimumSize 150x0 accessibleName "Subject" currentIndex 0 sizeAdjustPolicy AdjustToMinimumContentsLengthWithIcon item "All"
          QGroupBox groupBox_2 "Configuration"
            QGridLayout gridLayout spacing 6,6 margins 11 11 11 11
              QRadioButton rbtn_VoxelToVoxel "&Voxel to voxel" toolTip "<html><head/><body><p>Compute the connectivity between all the voxels within a VOI. <span style=" font-weight:600;">This will result into a huge matrix and any subsequent graph analysis might be computationally intense and time consuming.</span></p></body></html>" no checkable cell 0,0
              QComboBox cbox_ConfigureVOI minimumSize 150x0 toolTip "<html><head/><body><p>Select a VOI, in case there are multiple ones.</p></body></html>" accessibleName "VOI" currentIndex 0 sizeAdjustPolicy AdjustToMinimumContentsLengthWithIcon item "select" cell 0,1
              QRadioButton rbtn_SeedToSeed "&Seed to seed" toolTip "Compute the connectivity between the defined VOIs." checked cell 1,0
              QPushButton btn_ConfigureVOIs "select" accessibleName "select VOIs" cell 1,1
          QGroupBox groupBox_3 "Connectivity"
            QGridLayout gridLayout_2 spacing 6,6 margins 11 11 11 11
              QRadioButton rdBtn_Static "Static" checked cell 0,0
              QRadioButton rdBtn_Dynamic "&Dynamic" cell 1,0
              QPushButton btn_ConfigureDynamic "configure" flat cell 1,1
          QGroupBox group_ConnectivityType "Measure"
            QGridLayout gridLayout_3 spacing 6,6 margins 11 11 11 11
              QRadioButton rbtn_Correlation "&Correlation" checked cell 0,0
              QRadioButton rbtn_PartialCorrelation "&Partial Correlation" cell 0,1
              QRadioButton rbtn_Covariance "C&ovariance" cell 1,0
              QRadioButton rbtn_Tangent "&Tangent" cell 1,1
          QGroupBox groupBox "Matrix Values"
            QHBoxLayout horizontalLayout_5 spacing 6 margins 11 11 11 11
              QRadioButton rbtn_AbsoluteMtx "&Absolute" checked
              QRadioButton rbtn_PositiveMtx "Positi&ve"
              QRadioButton rbtn_NegativeMtx "Negat&ive"
          QGroupBox groupBox_4 "Filter"
            QVBoxLayout verticalLayout_4 spacing 6 margins 11 11 11 11
              QCheckBox chkBox_ComputeMST "compute Minimum Spanning Tree" checked
          spacer 20x40 Minimum/Expanding
          QFrame line frameShape HLine frameShadow Sunken policy Minimum/Fixed
          QCheckBox chkBox_ShowResults "Show Single Subject's Results Dialog" checked
          QPushButton btn_Compute "Compute All" bold
      QWidget tab_Graphs disabled tab "Group Analysis"
        QVBoxLayout verticalLayout_5 spacing 6 margins 11 11 11 11
          QLabel label_7 "<html><head/><body><p><span style=" font-size:9pt;">Estimated connectivity, graph and visualization strucrtures per subject.</span></p><p>The list contains the individual connectivity objects estimated per subject.</p></body></html>" styleSheet "background-color: #feffbb;\ncolor: rgb(0, 0, 0);\npadding: 5px;" wordWrap policy Preferred/Preferred
          QLabel label_5 "<html><head/><body><p>Select which subjects to compare.</p></body></html>"
          QListWidget list_ConnObjs accessibleName "Finished subjects" no showDropIndicator alternatingRowColors selectionMode MultiSelection
          QGroupBox groupBox_5
            QHBoxLayout horizontalLayout_6 spacing 6 margins 11 11 11 11
              QPushButton btn_OpenSubject "Open"
              QPushButton btn_ReleaseSubject "Release"
              QPushButton btn_ReleaseAllSubjects "Release All"
          QGroupBox groupBox_6 "Group Analysis"
            QGridLayout gridLayout_4 spacing 6,6 margins 11 11 11 11
              QLabel label_2 "<html><head/><body><p>Compute a distance/similarity matrix between the given connectivity matrices of the selected subjects. The metric is based on the euclidean distance of the eigen values of the matrices. The matrices will be padded with zeros if needed.</p></body></html>" wordWrap policy Preferred/Preferred cell 3,0 4 columns
              QCheckBox cbox_grp_useFilteredMatrix "use filtered matrix" cell 9,0
              QComboBox cbox_GraphDistance accessibleName "Distance" currentIndex 0 item "Spectral Euclidean Distance" cell 9,2
              QPushButton btn_ComputeGraphDistance "Compute" accessibleName "Compute distances" cell 9,3
              QPlainTextEdit plain_GraphResults accessibleName "Distances" readOnly cell 11,0 4 columns
    QHBoxLayout horizontalLayout spacing 10
      QPushButton btn_Help "Help"
      QCheckBox cbox_KeepOnTop "Keep on top" checked
      spacer 40x20 Expanding/Minimum
      QPushButton btn_CloseDialog "Close"
)form";

class Window : public DatasetFixture
{
protected:
    /// Those of the form, without the tabs and Qt's own parts of controls.
    QList<QWidget *> controls()
    {
        const QRegularExpression others("^($|qt_|Scroll|tab)");
        QList<QWidget *> found;
        for (QWidget *widget : dialog().findChildren<QWidget *>())
            if (!others.match(widget->objectName()).hasMatch())
                found.append(widget);
        return found;
    }
};

TEST_F(Window, HasTheFormThatIsDescribed)
{
    const Tessera window(nullptr);
    EXPECT_EQ('\n' + formText(window) + '\n', form);
}

TEST_F(Window, IsAsDescribed)
{
    Tessera window(nullptr);
    EXPECT_FALSE(window.isModal());
    EXPECT_EQ(window.plugin, nullptr);
    EXPECT_TRUE(window.windowFlags() & Qt::WindowStaysOnTopHint);
    EXPECT_FALSE(window.windowFlags() & Qt::WindowContextHelpButtonHint); // a dialog has it else
    EXPECT_TRUE(window.isWindow());
    window.show();
    EXPECT_EQ(window.size(), QSize(533, 740)) << "its contents need more room";
}

TEST_F(Window, NoButtonHasAnIcon)
{
    for (const QAbstractButton *button : dialog().findChildren<QAbstractButton *>())
        EXPECT_TRUE(button->icon().isNull()) << qPrintable(button->objectName());
}

/// What a control does: its signal and the dialog's slot.
struct Connection {
    const char *control;
    const char *signal;
    const char *slot;
};

TEST_F(Window, ControlsAreConnectedToTheirSlotsAndToNothingElse)
{
    const Connection connections[] = {
        {"cbox_KeepOnTop", SIGNAL(clicked(bool)), SLOT(toggled_keepWindowOnTop(bool))},
        {"btn_CloseDialog", SIGNAL(clicked(bool)), SLOT(closeDialog(bool))},
        {"cbox_UseProtocol", SIGNAL(toggled(bool)), SLOT(toggled_useProtocol(bool))},
        {"btn_RemoveAll", SIGNAL(clicked(bool)), SLOT(removeAllSubjects(bool))},
        {"btn_AddSubject", SIGNAL(clicked(bool)), SLOT(addSubject(bool))},
        {"btn_RemoveSubject", SIGNAL(clicked(bool)), SLOT(removeSubject(bool))},
        {"cBox_connectivityProfile", SIGNAL(currentIndexChanged(int)),
         SLOT(subjectProfile_Changed(int))},
        {"rbtn_VoxelToVoxel", SIGNAL(clicked()), SLOT(click_VoxelToVoxel())},
        {"cbox_ConfigureVOI", SIGNAL(activated(int)), SLOT(configureVoxelToVoxel(int))},
        {"rbtn_SeedToSeed", SIGNAL(clicked()), SLOT(click_SeedToSeed())},
        {"btn_ConfigureVOIs", SIGNAL(clicked(bool)), SLOT(configurationSeedToSeedVOIs(bool))},
        {"rbtn_Correlation", SIGNAL(clicked()), SLOT(click_MeasureCorrelation())},
        {"rbtn_PartialCorrelation", SIGNAL(clicked()), SLOT(click_MeasurePartCorrelation())},
        {"rbtn_AbsoluteMtx", SIGNAL(clicked()), SLOT(click_MtxAbsolute())},
        {"rbtn_PositiveMtx", SIGNAL(clicked()), SLOT(click_MtxPositive())},
        {"rbtn_NegativeMtx", SIGNAL(clicked()), SLOT(click_MtxNegative())},
        {"chkBox_ComputeMST", SIGNAL(clicked(bool)), SLOT(click_FilterMst(bool))},
        {"btn_Compute", SIGNAL(clicked()), SLOT(computeConnectivity())},
        {"list_ConnObjs", SIGNAL(doubleClicked(QModelIndex)),
         SLOT(subjects_OpenSelected(QModelIndex))},
        {"list_ConnObjs", SIGNAL(itemSelectionChanged()), SLOT(group_SelectedSubjects())},
        {"btn_OpenSubject", SIGNAL(clicked()), SLOT(subjects_OpenSelected())},
        {"btn_ReleaseSubject", SIGNAL(clicked()), SLOT(subjects_ReleaseSelected())},
        {"btn_ReleaseAllSubjects", SIGNAL(clicked()), SLOT(subjects_ReleaseAll())},
        {"btn_ComputeGraphDistance", SIGNAL(clicked()), SLOT(group_ComputeDistance())},
    };
    for (const Connection &connection : connections) {
        EXPECT_TRUE(QObject::disconnect(find<QWidget>(connection.control), connection.signal,
                                        &dialog(), connection.slot))
            << connection.control;
    }
    for (const QWidget *control : controls()) {
        EXPECT_FALSE(QObject::disconnect(control, nullptr, &dialog(), nullptr))
            << qPrintable(control->objectName()) << " does something else too";
    }
}

TEST_F(Window, TheTableIsOfSubjectsAndOnlyItsNamesStretch)
{
    const auto *const table = find<QTableView>("tbl_Subjects");
    EXPECT_EQ(model().QObject::parent(), table);
    EXPECT_TRUE(table->isColumnHidden(PrtColumn));
    const QHeaderView *const header = table->horizontalHeader();
    EXPECT_EQ(header->sectionResizeMode(0), QHeaderView::Stretch);
    for (int column = 1; column < 4; ++column) {
        EXPECT_EQ(header->sectionResizeMode(column), QHeaderView::Interactive);
        EXPECT_EQ(header->sectionSize(column), header->defaultSectionSize());
    }
}

TEST_F(Window, TheProfileOfAllIsOfNoRow)
{
    EXPECT_EQ(find<QComboBox>("cBox_connectivityProfile")->itemData(0, Qt::UserRole), -1);
}

TEST_F(Window, SlotsStandInTheirOrder)
{
    const char *const declared[] = {"addSubject(bool)",
                                    "removeSubject(bool)",
                                    "removeAllSubjects(bool)",
                                    "openVTCFile(bool)",
                                    "openVOIFile(bool)",
                                    "openPRTFile(bool)",
                                    "subjectNameChanged(QString,int)",
                                    "toggled_useProtocol(bool)",
                                    "vmrDocumentChanged(int)",
                                    "makeSubjectImmutable(int)",
                                    "subjectProfile_Changed(int)",
                                    "click_VoxelToVoxel()",
                                    "click_SeedToSeed()",
                                    "configurationSeedToSeedVOIs(bool)",
                                    "click_MeasureCorrelation()",
                                    "click_MeasurePartCorrelation()",
                                    "click_MtxAbsolute()",
                                    "click_MtxPositive()",
                                    "click_MtxNegative()",
                                    "click_FilterMst(bool)",
                                    "configureVoxelToVoxel(int)",
                                    "computeConnectivity()",
                                    "subjects_OpenSelected()",
                                    "subjects_OpenSelected(QModelIndex)",
                                    "subjects_ReleaseSelected()",
                                    "subjects_ReleaseAll()",
                                    "group_ComputeDistance()",
                                    "group_SelectedSubjects()",
                                    "closeDialog(bool)",
                                    "toggled_keepWindowOnTop(bool)"};
    const QMetaObject &meta = Tessera::staticMetaObject;
    int index = meta.methodOffset();
    for (const char *signature : declared) {
        ASSERT_LT(index, meta.methodCount());
        EXPECT_STREQ(meta.method(index).methodSignature().constData(), signature);
        EXPECT_EQ(meta.method(index).methodType(), QMetaMethod::Slot);
        ++index;
    }
    EXPECT_EQ(index, meta.methodCount());
}

/// The texts of the buttons' mnemonics, page by page: each reaches its control.
TEST_F(Window, MnemonicsReachTheirControls)
{
    auto *const page = find<QWidget>("tab_Connectivity");
    page->setEnabled(true);
    find<QTabWidget>("tabWidget")->setCurrentWidget(page);
    dialog().activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog()));
    const struct {
        Qt::Key key;
        const char *name;
    } mnemonics[] = {{Qt::Key_P, "rbtn_PartialCorrelation"},
                     {Qt::Key_O, "rbtn_Covariance"},
                     {Qt::Key_T, "rbtn_Tangent"},
                     {Qt::Key_C, "rbtn_Correlation"},
                     {Qt::Key_I, "rbtn_NegativeMtx"},
                     {Qt::Key_A, "rbtn_AbsoluteMtx"},
                     {Qt::Key_D, "rdBtn_Dynamic"},
                     {Qt::Key_S, "rbtn_SeedToSeed"}};
    for (const auto &mnemonic : mnemonics) {
        QTest::keyClick(&dialog(), mnemonic.key, Qt::AltModifier);
        auto *const button = find<QRadioButton>(mnemonic.name);
        EXPECT_TRUE(QTest::qWaitFor([button] { return button->isChecked(); })) << mnemonic.name;
    }
    // Two share a letter; once the unsupported choices are locked it is the other's alone.
    find<QWidget>("rbtn_VoxelToVoxel")->setEnabled(false);
    QTest::keyClick(&dialog(), Qt::Key_V, Qt::AltModifier);
    auto *const positive = find<QRadioButton>("rbtn_PositiveMtx");
    EXPECT_TRUE(QTest::qWaitFor([positive] { return positive->isChecked(); }));
}

/// The names of the controls that Tab visits, from the tab bar on.
QStringList tabOrder(QWidget &window, QTabWidget *tabs)
{
    QStringList order;
    tabs->tabBar()->setFocus();
    for (int step = 0; step < 60; ++step) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        if (window.focusWidget() == tabs->tabBar())
            break;
        order.append(window.focusWidget()->objectName());
    }
    return order;
}

TEST_F(Window, TabOrderIsThatOfTheEye)
{
    auto *const tabs = find<QTabWidget>("tabWidget");
    for (int page = 0; page < 3; ++page)
        tabs->widget(page)->setEnabled(true);
    find<QWidget>("btn_RemoveSubject")->setEnabled(true);
    dialog().activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog()));
    const QStringList below = {"btn_Help", "cbox_KeepOnTop", "btn_CloseDialog"};
    tabs->setCurrentIndex(0);
    EXPECT_EQ(tabOrder(dialog(), tabs), (QStringList{"tbl_Subjects", "cbox_UseProtocol",
                                                     "btn_AddSubject", "btn_RemoveSubject"} +
                                         below));
    tabs->setCurrentIndex(1);
    // Of the radio buttons of a group the checked one is a stop; arrow keys reach the others.
    EXPECT_EQ(tabOrder(dialog(), tabs),
              (QStringList{"cBox_connectivityProfile", "rbtn_VoxelToVoxel", "cbox_ConfigureVOI",
                           "rbtn_SeedToSeed", "btn_ConfigureVOIs", "rdBtn_Static",
                           "btn_ConfigureDynamic", "rbtn_Correlation", "rbtn_AbsoluteMtx",
                           "chkBox_ComputeMST", "chkBox_ShowResults", "btn_Compute"} +
               below));
    tabs->setCurrentIndex(2);
    EXPECT_EQ(tabOrder(dialog(), tabs),
              (QStringList{"list_ConnObjs", "btn_OpenSubject", "btn_ReleaseSubject",
                           "btn_ReleaseAllSubjects", "cbox_grp_useFilteredMatrix",
                           "cbox_GraphDistance", "btn_ComputeGraphDistance", "plain_GraphResults"} +
               below));
}

TEST_F(Window, TabOrderGoesThroughTheRowsOfTheTable)
{
    for (const char *name : {"first", "second", "third"}) {
        const int row = addRow();
        for (int column = VmrColumn; column <= PrtColumn; ++column) {
            cell(row, column)->setObjectName(QString::fromLatin1(name) + QString::number(column));
        }
    }
    auto *const tabs = find<QTabWidget>("tabWidget");
    dialog().activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog()));
    const QStringList before = {"tbl_Subjects"};
    const QStringList behind = {"cbox_UseProtocol", "btn_AddSubject", "btn_RemoveSubject",
                                "btn_Help",         "cbox_KeepOnTop", "btn_CloseDialog"};
    EXPECT_EQ(tabOrder(dialog(), tabs),
              (before +
               QStringList{"first1", "first2", "first3", "second1", "second2", "second3", "third1",
                           "third2", "third3"} +
               behind));
    removeRow(1);
    EXPECT_EQ(tabOrder(dialog(), tabs),
              (before + QStringList{"first1", "first2", "first3", "third1", "third2", "third3"} +
               behind));
    // The fourth column, once it is shown and chosen from.
    click("cbox_UseProtocol");
    fileButton(0, PrtColumn)->setEnabled(true);
    ASSERT_TRUE(QTest::qWaitFor([this] { return fileButton(0, PrtColumn)->isVisible(); }));
    EXPECT_EQ(tabOrder(dialog(), tabs),
              (before +
               QStringList{"first1", "first2", "first3", "first4", "third1", "third2", "third3"} +
               behind));
}

TEST_F(Window, EveryInputHasAKindAndANameOfItsOwnForScreenReaders)
{
    QStringList names;
    for (QWidget *control : controls()) {
        if (control->focusPolicy() == Qt::NoFocus || qobject_cast<QGroupBox *>(control))
            continue;
        SCOPED_TRACE(qPrintable(control->objectName()));
        const QAccessibleInterface *const accessible =
            QAccessible::queryAccessibleInterface(control);
        ASSERT_NE(accessible, nullptr);
        EXPECT_NE(accessible->role(), QAccessible::Client) << "of no kind";
        names.append(accessible->text(QAccessible::Name));
        EXPECT_NE(names.last(), "");
    }
    EXPECT_EQ(names.size(), 34);
    EXPECT_EQ(names.removeDuplicates(), 0) << qPrintable(names.join(", "));
    EXPECT_TRUE(names.contains("Dataset"));
    EXPECT_TRUE(names.contains("Compute distances"));
}

TEST_F(Window, CellsSayTheirColumnToScreenReaders)
{
    addRow();
    const char *const titles[] = {"", "VMR", "VTC", "VOI", "PRT"};
    for (int column = VmrColumn; column <= PrtColumn; ++column)
        EXPECT_EQ(cell(0, column)->accessibleDescription(), titles[column]);
}

TEST_F(Window, ArrowKeysReachEveryMeasure)
{
    find<QWidget>("tab_Connectivity")->setEnabled(true);
    find<QTabWidget>("tabWidget")->setCurrentIndex(1);
    dialog().activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog()));
    find<QWidget>("rbtn_Correlation")->setFocus();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Right);
    EXPECT_EQ(QApplication::focusWidget(), find<QWidget>("rbtn_PartialCorrelation"));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Down);
    EXPECT_EQ(QApplication::focusWidget(), find<QWidget>("rbtn_Tangent"));
}

TEST_F(Window, ReturnPressesNothing)
{
    dialog().activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog()));
    for (const char *name : {"cbox_UseProtocol", "tbl_Subjects", "cbox_KeepOnTop"}) {
        find<QWidget>(name)->setFocus();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    }
    EXPECT_EQ(model().rowCount(), 0);
    EXPECT_TRUE(dialog().isVisible());
}

TEST_F(Window, HelpDoesNothing)
{
    click("btn_Help");
    EXPECT_TRUE(dialog().isVisible());
    EXPECT_EQ(QApplication::topLevelWidgets().count(&dialog()), 1);
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

TEST_F(Window, KeepOnTopTogglesTheHint)
{
    click("cbox_KeepOnTop");
    EXPECT_FALSE(dialog().windowFlags() & Qt::WindowStaysOnTopHint);
    EXPECT_TRUE(dialog().isVisible());
    click("cbox_KeepOnTop");
    EXPECT_TRUE(dialog().windowFlags() & Qt::WindowStaysOnTopHint);
    EXPECT_TRUE(dialog().isVisible());
}

TEST_F(Window, CloseDestroysIt)
{
    const QPointer<Tessera> window = &dialog();
    PluginSettings::instance()->verboseLogging = true;
    takeMessages();
    click("btn_CloseDialog");
    PluginSettings::instance()->verboseLogging = false;
    EXPECT_TRUE(QTest::qWaitFor([&] { return window.isNull(); }));
    const QVector<LoggedMessage> messages = takeMessages();
    ASSERT_EQ(messages.size(), 1);
    EXPECT_EQ(messages.first().text, "void __cdecl Tessera::closeDialog(bool)");
}

TEST_F(Window, EscapeDestroysIt)
{
    const QPointer<Tessera> window = &dialog();
    QTest::keyClick(window, Qt::Key_Escape);
    EXPECT_TRUE(QTest::qWaitFor([&] { return window.isNull(); }));
}

} // namespace
