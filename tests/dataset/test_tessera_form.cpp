// SPDX-License-Identifier: GPL-3.0-or-later
//
// The form of the main dialog, widget by widget.
#include "dataset/plugin_settings.h"
#include "tests/gui_test.h"
#include "tests/support/dataset_fixture.h"

#include <QAccessible>
#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLayout>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QRadioButton>
#include <QTabBar>
#include <QTabWidget>
#include <QTableView>
#include <QtTest>

#include <ostream>

namespace
{

/// One row of the form's description. A text of null is none.
struct Control {
    const char *page; ///< the page that holds it, or the dialog
    const char *name;
    const char *className;
    const char *text;
    bool enabled;
    int checked = -1; ///< -1: not checkable by itself
};

std::ostream &operator<<(std::ostream &out, const Control &control)
{
    return out << control.name;
}

constexpr const char *beginNote =
    "<html><head/><body><p><span style=\" font-size:9pt;\">Begin by loading some subject data; "
    "that is a combination of VTC/VOI files.</span></p></body></html>";
constexpr const char *datasetHeading =
    "<html><head/><body><p><span style=\" font-weight:600;\">Dataset</span></p></body></html>";
constexpr const char *estimateNote = "<html><head/><body><p><span style=\" font-size:9pt;\">"
                                     "Estimate the connectivity for</span></p></body></html>";
constexpr const char *resultsNote =
    "<html><head/><body><p><span style=\" font-size:9pt;\">Estimated connectivity, graph and "
    "visualization strucrtures per subject.</span></p><p>The list contains the individual "
    "connectivity objects estimated per subject.</p></body></html>";
constexpr const char *compareNote =
    "<html><head/><body><p>Select which subjects to compare.</p></body></html>";
constexpr const char *distanceNote =
    "<html><head/><body><p>Compute a distance/similarity matrix between the given connectivity "
    "matrices of the selected subjects. The metric is based on the euclidean distance of the eigen "
    "values of the matrices. The matrices will be padded with zeros if needed.</p></body></html>";

const Control controls[] = {
    {"Tessera", "btn_Help", "QPushButton", "Help", true},
    {"Tessera", "cbox_KeepOnTop", "QCheckBox", "Keep on top", true, 1},
    {"Tessera", "btn_CloseDialog", "QPushButton", "Close", true},

    {"tab_Data", "label", "QLabel", beginNote, true},
    {"tab_Data", "lbl_Subjects", "QLabel", datasetHeading, true},
    {"tab_Data", "lbl_SubjectsCounter", "QLabel", "0", true},
    {"tab_Data", "tbl_Subjects", "QTableView", nullptr, true},
    {"tab_Data", "cbox_UseProtocol", "QCheckBox", "use protocol", true, 0},
    {"tab_Data", "line_2", "QFrame", nullptr, true},
    {"tab_Data", "btn_RemoveAll", "QPushButton", "Remove All", false},
    {"tab_Data", "btn_AddSubject", "QPushButton", "Add subject", true},
    {"tab_Data", "btn_RemoveSubject", "QPushButton", "Remove selected", false},

    {"tab_Connectivity", "label_4", "QLabel", estimateNote, true},
    {"tab_Connectivity", "cBox_connectivityProfile", "QComboBox", "All", true},
    {"tab_Connectivity", "groupBox_2", "QGroupBox", "Configuration", true},
    {"groupBox_2", "rbtn_VoxelToVoxel", "QRadioButton", "&Voxel to voxel", true, 0},
    {"groupBox_2", "cbox_ConfigureVOI", "QComboBox", "select", true},
    {"groupBox_2", "rbtn_SeedToSeed", "QRadioButton", "&Seed to seed", true, 1},
    {"groupBox_2", "btn_ConfigureVOIs", "QPushButton", "select", true},
    {"tab_Connectivity", "groupBox_3", "QGroupBox", "Connectivity", true},
    {"groupBox_3", "rdBtn_Static", "QRadioButton", "Static", true, 1},
    {"groupBox_3", "rdBtn_Dynamic", "QRadioButton", "&Dynamic", true, 0},
    {"groupBox_3", "btn_ConfigureDynamic", "QPushButton", "configure", true},
    {"tab_Connectivity", "group_ConnectivityType", "QGroupBox", "Measure", true},
    {"group_ConnectivityType", "rbtn_Correlation", "QRadioButton", "&Correlation", true, 1},
    {"group_ConnectivityType", "rbtn_PartialCorrelation", "QRadioButton", "&Partial Correlation",
     true, 0},
    {"group_ConnectivityType", "rbtn_Covariance", "QRadioButton", "C&ovariance", true, 0},
    {"group_ConnectivityType", "rbtn_Tangent", "QRadioButton", "&Tangent", true, 0},
    {"tab_Connectivity", "groupBox", "QGroupBox", "Matrix Values", true},
    {"groupBox", "rbtn_AbsoluteMtx", "QRadioButton", "&Absolute", true, 1},
    {"groupBox", "rbtn_PositiveMtx", "QRadioButton", "Positi&ve", true, 0},
    {"groupBox", "rbtn_NegativeMtx", "QRadioButton", "Negat&ive", true, 0},
    {"tab_Connectivity", "groupBox_4", "QGroupBox", "Filter", true},
    {"groupBox_4", "chkBox_ComputeMST", "QCheckBox", "compute Minimum Spanning Tree", true, 1},
    {"tab_Connectivity", "line", "QFrame", nullptr, true},
    {"tab_Connectivity", "chkBox_ShowResults", "QCheckBox", "Show Single Subject's Results Dialog",
     true, 1},
    {"tab_Connectivity", "btn_Compute", "QPushButton", "Compute All", true},

    {"tab_Graphs", "label_7", "QLabel", resultsNote, true},
    {"tab_Graphs", "label_5", "QLabel", compareNote, true},
    {"tab_Graphs", "list_ConnObjs", "QListWidget", nullptr, true},
    {"tab_Graphs", "groupBox_5", "QGroupBox", "", true},
    {"groupBox_5", "btn_OpenSubject", "QPushButton", "Open", true},
    {"groupBox_5", "btn_ReleaseSubject", "QPushButton", "Release", true},
    {"groupBox_5", "btn_ReleaseAllSubjects", "QPushButton", "Release All", true},
    {"tab_Graphs", "groupBox_6", "QGroupBox", "Group Analysis", true},
    {"groupBox_6", "label_2", "QLabel", distanceNote, true},
    {"groupBox_6", "cbox_grp_useFilteredMatrix", "QCheckBox", "use filtered matrix", true, 0},
    {"groupBox_6", "cbox_GraphDistance", "QComboBox", "Spectral Euclidean Distance", true},
    {"groupBox_6", "btn_ComputeGraphDistance", "QPushButton", "Compute", true},
    {"groupBox_6", "plain_GraphResults", "QPlainTextEdit", "", true},
};

QString textOf(const QWidget *widget)
{
    if (const auto *const button = qobject_cast<const QAbstractButton *>(widget))
        return button->text();
    if (const auto *const label = qobject_cast<const QLabel *>(widget))
        return label->text();
    if (const auto *const box = qobject_cast<const QComboBox *>(widget))
        return box->count() == 1 ? box->itemText(0) : QStringLiteral("not one item");
    if (const auto *const group = qobject_cast<const QGroupBox *>(widget))
        return group->title();
    if (const auto *const text = qobject_cast<const QPlainTextEdit *>(widget))
        return text->toPlainText();
    return {};
}

class Form : public DatasetFixture, public testing::WithParamInterface<Control>
{
};

TEST_P(Form, HasTheControl)
{
    const Control &expected = GetParam();
    const auto *const widget = find<QWidget>(expected.name);
    ASSERT_NE(widget, nullptr);
    EXPECT_STREQ(widget->metaObject()->className(), expected.className);
    EXPECT_EQ(widget->parentWidget()->objectName(), expected.page);
    if (expected.text != nullptr) {
        EXPECT_EQ(textOf(widget), expected.text);
    }
    EXPECT_EQ(widget->isEnabledTo(widget->parentWidget()), expected.enabled);
    if (const auto *const button = qobject_cast<const QAbstractButton *>(widget)) {
        EXPECT_EQ(button->isChecked(), expected.checked == 1);
        EXPECT_TRUE(button->icon().isNull());
    }
    if (const auto *const button = qobject_cast<const QPushButton *>(widget)) {
        EXPECT_FALSE(button->autoDefault()) << "Return would press it";
        EXPECT_FALSE(button->isDefault());
    }
}

INSTANTIATE_TEST_SUITE_P(Controls, Form, testing::ValuesIn(controls),
                         [](const auto &test) { return std::string(test.param.name); });

class Window : public DatasetFixture
{
};

TEST_F(Window, IsAsDescribed)
{
    Tessera window(nullptr);
    EXPECT_EQ(window.objectName(), "Tessera");
    EXPECT_EQ(window.windowTitle(), "Tessera Analysis Plugin");
    EXPECT_EQ(window.size(), QSize(533, 740));
    EXPECT_EQ(window.sizePolicy().horizontalPolicy(), QSizePolicy::Preferred);
    EXPECT_EQ(window.sizePolicy().verticalPolicy(), QSizePolicy::Preferred);
    EXPECT_FALSE(window.isSizeGripEnabled());
    EXPECT_FALSE(window.isModal());
    EXPECT_EQ(window.plugin, nullptr);
    EXPECT_TRUE(window.windowFlags() & Qt::WindowStaysOnTopHint);
    EXPECT_FALSE(window.windowFlags() & Qt::WindowContextHelpButtonHint); // a dialog has it else
    EXPECT_TRUE(window.isWindow());
    window.show();
    EXPECT_EQ(window.size(), QSize(533, 740)) << "its contents need more room";
}

TEST_F(Window, ControlsAreAllThatThereIs)
{
    QStringList described;
    for (const Control &control : controls)
        described.append(control.name);
    described += {"tabWidget", "tab_Data", "tab_Connectivity", "tab_Graphs"};
    for (const QWidget *widget : dialog().findChildren<QWidget *>()) {
        const QString name = widget->objectName();
        const bool ofQt = name.startsWith("qt_") || name.startsWith("Scroll");
        if (!name.isEmpty() && !ofQt) {
            EXPECT_TRUE(described.contains(name)) << qPrintable(name);
        }
    }
}

TEST_F(Window, OnlyTheseControlsAreFlat)
{
    const QStringList flat = {"btn_RemoveAll", "btn_AddSubject", "btn_RemoveSubject",
                              "btn_ConfigureDynamic"};
    for (const QPushButton *button : dialog().findChildren<QPushButton *>())
        EXPECT_EQ(button->isFlat(), flat.contains(button->objectName()))
            << qPrintable(button->objectName());
}

TEST_F(Window, OnlyTheseControlsHaveAToolTip)
{
    const QStringList explained = {"rbtn_VoxelToVoxel", "cbox_ConfigureVOI", "rbtn_SeedToSeed"};
    for (const QWidget *widget : dialog().findChildren<QWidget *>())
        EXPECT_EQ(!widget->toolTip().isEmpty(), explained.contains(widget->objectName()))
            << qPrintable(widget->objectName());
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
    for (const Control &control : controls) {
        EXPECT_FALSE(QObject::disconnect(find<QWidget>(control.name), nullptr, &dialog(), nullptr))
            << control.name << " does something else too";
    }
}

TEST_F(Window, Tabs)
{
    const auto *const tabs = find<QTabWidget>("tabWidget");
    ASSERT_EQ(tabs->count(), 3);
    EXPECT_EQ(tabs->currentIndex(), 0);
    EXPECT_FALSE(tabs->isMovable());
    const char *const names[] = {"tab_Data", "tab_Connectivity", "tab_Graphs"};
    const char *const texts[] = {"Data", "Functional Connectivity", "Group Analysis"};
    for (int tab = 0; tab < 3; ++tab) {
        EXPECT_EQ(tabs->widget(tab)->objectName(), names[tab]);
        EXPECT_EQ(tabs->tabText(tab), texts[tab]);
        EXPECT_EQ(tabs->widget(tab)->isEnabledTo(&dialog()), tab == 0);
    }
}

TEST_F(Window, LayoutsHaveTheirSpacingAndMargins)
{
    const QMargins margins(11, 11, 11, 11);
    EXPECT_EQ(dialog().layout()->spacing(), 6);
    EXPECT_EQ(dialog().layout()->contentsMargins(), margins);
    for (const char *name :
         {"tab_Data", "tab_Connectivity", "tab_Graphs", "groupBox_2", "groupBox_3",
          "group_ConnectivityType", "groupBox", "groupBox_4", "groupBox_5", "groupBox_6"}) {
        const QLayout *const layout = find<QWidget>(name)->layout();
        ASSERT_NE(layout, nullptr) << name;
        EXPECT_EQ(layout->contentsMargins(), margins) << name;
        if (const auto *const grid = qobject_cast<const QGridLayout *>(layout)) {
            EXPECT_EQ(grid->horizontalSpacing(), 6) << name;
            EXPECT_EQ(grid->verticalSpacing(), 6) << name;
        } else {
            EXPECT_EQ(layout->spacing(), 6) << name;
        }
    }
}

TEST_F(Window, LowerRow)
{
    ASSERT_EQ(dialog().layout()->count(), 2);
    EXPECT_EQ(dialog().layout()->itemAt(0)->widget(), find<QWidget>("tabWidget"));
    QLayout *const row = dialog().layout()->itemAt(1)->layout();
    ASSERT_NE(row, nullptr);
    EXPECT_EQ(row->spacing(), 10);
    ASSERT_EQ(row->count(), 4);
    EXPECT_EQ(row->itemAt(0)->widget(), find<QWidget>("btn_Help"));
    EXPECT_EQ(row->itemAt(1)->widget(), find<QWidget>("cbox_KeepOnTop"));
    ASSERT_NE(row->itemAt(2)->spacerItem(), nullptr);
    EXPECT_TRUE(row->itemAt(2)->expandingDirections() & Qt::Horizontal);
    EXPECT_EQ(row->itemAt(3)->widget(), find<QWidget>("btn_CloseDialog"));
}

TEST_F(Window, ControlsOfAPageStandFromTopToBottom)
{
    for (const char *page : {"tab_Data", "tab_Connectivity", "tab_Graphs"}) {
        showTab(find<QWidget>(page)->findChild<QLabel *>());
        int above = 0;
        for (const Control &control : controls) {
            if (QLatin1String(control.page) != QLatin1String(page))
                continue;
            const QRect place = find<QWidget>(control.name)->geometry();
            EXPECT_GE(place.bottom(), above) << control.name;
            above = place.top();
        }
    }
}

TEST_F(Window, Notes)
{
    EXPECT_EQ(find<QLabel>("label")->styleSheet(),
              "background-color: #feffbb;\npadding: 5px;\ncolor: rgb(0, 0, 0);");
    EXPECT_EQ(find<QLabel>("label_4")->styleSheet(), find<QLabel>("label")->styleSheet());
    EXPECT_EQ(find<QLabel>("label_7")->styleSheet(),
              "background-color: #feffbb;\ncolor: rgb(0, 0, 0);\npadding: 5px;");
    for (const QLabel *label : dialog().findChildren<QLabel *>()) {
        const bool wraps =
            QStringList{"label", "label_4", "label_7", "label_2"}.contains(label->objectName());
        EXPECT_EQ(label->wordWrap(), wraps) << qPrintable(label->objectName());
    }
}

TEST_F(Window, DetailsOfTheDataPage)
{
    EXPECT_EQ(find<QLabel>("lbl_SubjectsCounter")->alignment() & Qt::AlignHorizontal_Mask,
              Qt::AlignRight | Qt::AlignTrailing);
    EXPECT_TRUE(find<QLabel>("lbl_SubjectsCounter")->alignment() & Qt::AlignVCenter);

    const auto *const table = find<QTableView>("tbl_Subjects");
    EXPECT_EQ(table->selectionMode(), QAbstractItemView::SingleSelection);
    EXPECT_EQ(model().QObject::parent(), table);
    EXPECT_TRUE(table->isColumnHidden(PrtColumn));
    const QHeaderView *const header = table->horizontalHeader();
    EXPECT_EQ(header->sectionResizeMode(0), QHeaderView::Stretch);
    for (int column = 1; column < 4; ++column) {
        EXPECT_EQ(header->sectionResizeMode(column), QHeaderView::Interactive);
        EXPECT_EQ(header->sectionSize(column), header->defaultSectionSize());
    }
    for (const char *name : {"line", "line_2"}) {
        EXPECT_EQ(find<QFrame>(name)->frameShape(), QFrame::HLine) << name;
        EXPECT_EQ(find<QFrame>(name)->frameShadow(), QFrame::Sunken) << name;
    }
}

TEST_F(Window, DetailsOfTheConnectivityPage)
{
    EXPECT_EQ(find<QLabel>("label_4")->minimumWidth(), 180);
    EXPECT_EQ(find<QComboBox>("cBox_connectivityProfile")->minimumWidth(), 150);
    EXPECT_EQ(find<QComboBox>("cBox_connectivityProfile")->itemData(0, Qt::UserRole), -1);
    EXPECT_EQ(find<QComboBox>("cbox_ConfigureVOI")->minimumWidth(), 150);
    EXPECT_FALSE(find<QRadioButton>("rbtn_VoxelToVoxel")->isCheckable());
    EXPECT_EQ(find<QWidget>("rbtn_VoxelToVoxel")->toolTip(),
              "<html><head/><body><p>Compute the connectivity between all the voxels within a VOI. "
              "<span style=\" font-weight:600;\">This will result into a huge matrix and any "
              "subsequent graph analysis might be computationally intense and time consuming."
              "</span></p></body></html>");
    EXPECT_EQ(find<QWidget>("cbox_ConfigureVOI")->toolTip(),
              "<html><head/><body><p>Select a VOI, in case there are multiple ones.</p></body>"
              "</html>");
    EXPECT_EQ(find<QWidget>("rbtn_SeedToSeed")->toolTip(),
              "Compute the connectivity between the defined VOIs.");
    EXPECT_TRUE(find<QPushButton>("btn_Compute")->font().bold());
}

TEST_F(Window, DetailsOfTheGroupPage)
{
    const auto *const list = find<QListWidget>("list_ConnObjs");
    EXPECT_EQ(list->selectionMode(), QAbstractItemView::MultiSelection);
    EXPECT_TRUE(list->alternatingRowColors());
    EXPECT_FALSE(list->property("showDropIndicator").toBool());
    EXPECT_TRUE(find<QPlainTextEdit>("plain_GraphResults")->isReadOnly());

    const auto *const grid = qobject_cast<QGridLayout *>(find<QWidget>("groupBox_6")->layout());
    ASSERT_NE(grid, nullptr);
    const struct {
        const char *name;
        int row, column, columns;
    } cells[] = {{"label_2", 3, 0, 4},
                 {"cbox_grp_useFilteredMatrix", 9, 0, 1},
                 {"cbox_GraphDistance", 9, 2, 1},
                 {"btn_ComputeGraphDistance", 9, 3, 1},
                 {"plain_GraphResults", 11, 0, 4}};
    for (const auto &expected : cells) {
        int row = 0, column = 0, rows = 0, columns = 0;
        grid->getItemPosition(grid->indexOf(find<QWidget>(expected.name)), &row, &column, &rows,
                              &columns);
        EXPECT_EQ(row, expected.row) << expected.name;
        EXPECT_EQ(column, expected.column) << expected.name;
        EXPECT_EQ(rows, 1) << expected.name;
        EXPECT_EQ(columns, expected.columns) << expected.name;
    }
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
    for (const Control &control : controls) {
        auto *const widget = find<QWidget>(control.name);
        if (widget->focusPolicy() == Qt::NoFocus || qobject_cast<QGroupBox *>(widget))
            continue;
        const QAccessibleInterface *const accessible =
            QAccessible::queryAccessibleInterface(widget);
        ASSERT_NE(accessible, nullptr) << control.name;
        EXPECT_NE(accessible->role(), QAccessible::Client) << control.name << " is of no kind";
        names.append(accessible->text(QAccessible::Name));
        EXPECT_NE(names.last(), "") << control.name;
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
