// SPDX-License-Identifier: GPL-3.0-or-later
//
// The form of the results dialog, widget by widget.
#include "tests/results/results_fixture.h"

#include "plots/span_slider.h"
#include "results/feature_values.h"
#include "tests/support/as_read.h"

#include <QCheckBox>
#include <QDir>
#include <QDoubleSpinBox>
#include <QFile>
#include <QGridLayout>
#include <QGroupBox>
#include <QIcon>
#include <QImage>
#include <QLabel>
#include <QMetaMethod>
#include <QProgressBar>
#include <QSpinBox>
#include <QTabBar>
#include <QTabWidget>
#include <QTableView>
#include <QtTest>

namespace
{

/// One row of the form's description. A text of null is none.
struct Control {
    const char *page; ///< the page or group that holds it, or the dialog
    const char *name;
    const char *className;
    const char *text;
    bool enabled = true; ///< by itself, whatever its page is
    int checked = -1;    ///< -1: not checkable
    /// Place in the grid of its group: row, column, columns; -1: in no grid
    int row = -1, column = -1, columns = 1;
};

void PrintTo(const Control &control, std::ostream *out)
{
    *out << control.name;
}

#define NOTE(spans) "<html><head/><body><p>" spans "</p></body></html>"
#define BOLD9(text) "<span style=\" font-size:9pt; font-weight:600;\">" text "</span>"
#define PLAIN9(text) "<span style=\" font-size:9pt;\">" text "</span>"
#define HEADING(text) "<span style=\" font-weight:600;\">" text "</span>"

constexpr const char *vis = "tab_Visualization";
constexpr const char *ring = "groupbox_CircularPlot";
constexpr const char *range = "groupBox";
constexpr const char *share = "groupBox_2";
constexpr const char *data = "groupBox_3";
constexpr const char *files = "groupBox_6";

const Control controls[] = {
    {vis, "label_15", "QLabel",
     NOTE(BOLD9("Connectivity matrix") "<br/>" PLAIN9(
         "Display the connectivity matrix in a table format."))},
    {vis, "btn_PlotConnMtx", "QPushButton", "Visualize"},
    {vis, "label_16", "QLabel",
     NOTE(BOLD9("Circular plot") "<br/>" PLAIN9(
         "Visualize the connections in an intuitive and interactive plot."))},
    {vis, "btn_CircularPlotConnMtx", "QPushButton", "Visualize"},
    {vis, ring, "QGroupBox", "Nodes && Edges", false},
    {ring, "label_20", "QLabel", "Display range", true, -1, 0, 0},
    {ring, "lbl_Spanner_Low", "QLabel", "0.0", true, -1, 0, 1},
    {ring, "widget_CircPlot_Spanner", "QxtSpanSlider", nullptr, true, -1, 0, 2, 2},
    {ring, "lbl_Spanner_Upper", "QLabel", "1.0", true, -1, 0, 4},
    {ring, "line_2", "QFrame", nullptr, true, -1, 2, 0, 6},
    {ring, "label_7", "QLabel", "Show labels", true, -1, 4, 0},
    {ring, "chkBox_CircPlot_ShowLabels", "QCheckBox", "", true, 1, 4, 1},
    {ring, "label_9", "QLabel", "Use weights for edges' thickness", true, -1, 5, 0},
    {ring, "chkBox_CircPlot_ConnWeights", "QCheckBox", "", true, 1, 5, 1},
    {ring, "label_14", "QLabel", "Thickness multiplier", true, -1, 5, 3},
    {ring, "sBox_CircPlot_ThicknessMultiplier", "QDoubleSpinBox", "5.00", true, -1, 5, 4},
    {ring, "label_11", "QLabel", "Use weights for edge's colors", true, -1, 14, 0},
    {ring, "chkBox_CircPlot_ConnColors", "QCheckBox", "", true, 0, 14, 1, 5},
    {ring, "label_12", "QLabel", "Fixed thickness", true, -1, 15, 0},
    {ring, "dsBox_CircPlot_EdgesThickness", "QDoubleSpinBox", "1.0", true, -1, 15, 1},
    {ring, "label_8", "QLabel", "Nodes' size", true, -1, 19, 0},
    {ring, "sBox_CircPlot_NodesSize", "QSpinBox", "10", true, -1, 19, 1},

    {"tab_GraphFeatures", "label_10", "QLabel", "Graph theoretic features"},
    {"tab_GraphFeatures", "ckBox_UseFilteredMatrix", "QCheckBox", "Use filtered matrix", false, 0},
    {"tab_GraphFeatures", "tblView_GraphFeatures", "QTableView", nullptr},

    {"tab_Nodes", "label_6", "QLabel",
     NOTE(PLAIN9("Select which nodes to include to the visualization and analysis procedure."))},
    {"tab_Nodes", "tblView_Nodes", "QTableView", nullptr},
    {"tab_Nodes", "btn_HideAllNodes", "QPushButton", "hide all"},
    {"tab_Nodes", "btn_ShowAllNodes", "QPushButton", "show all"},

    {"tab_Filter", "label", "QLabel",
     NOTE(PLAIN9("Filter out the connections given the arbitrary boundaries."))},
    {"tab_Filter", range, "QGroupBox", "W&ithin Range", true, 0},
    {range, "label_2", "QLabel", "Low boundary", true, -1, 0, 0},
    {range, "sBox_FilterRange_LowBound", "QDoubleSpinBox", "0.00", true, -1, 0, 2},
    {range, "label_3", "QLabel", "Upper boundary", true, -1, 1, 0},
    {range, "sBox_FilterRange_UpperBound", "QDoubleSpinBox", "1.00", true, -1, 1, 2},
    {"tab_Filter", "label_4", "QLabel",
     NOTE(PLAIN9("Filter in only the % of the strongest connections."))},
    {"tab_Filter", share, "QGroupBox", "Percen&tage", true, 0},
    {share, "sBox_FilterPerc_Perc", "QSpinBox", "85%", true, -1, 0, 1},
    {share, "label_5", "QLabel", "of strongest connections", true, -1, 0, 2},

    {"tab", data, "QGroupBox", "Export"},
    {data, "label_19", "QLabel", "fMRI time series", true, -1, 0, 0},
    {data, "btn_exportFMRITS", "QPushButton", "select...", true, -1, 0, 2},
    {data, "label_18", "QLabel", "Connectivity matrix", true, -1, 1, 0},
    {data, "btn_exportConnectivityMatrix", "QPushButton", "select...", true, -1, 1, 2},
    {data, "label_21", "QLabel", "Filtered MST matrix", true, -1, 2, 0},
    {data, "label_22", "QLabel", "(if available)", true, -1, 2, 1},
    {data, "btn_exportMSTMatrix", "QPushButton", "select...", false, -1, 2, 2},

    {"tab_Metadata", files, "QGroupBox", ""},
    {files, "label_13", "QLabel", NOTE(HEADING("VTC file"))},
    {files, "lbl_VTC_filename", "QLabel", "/data/run.vtc"},
    {files, "label_17", "QLabel", NOTE(HEADING("VOI file"))},
    {files, "lbl_VOI_filename", "QLabel", "/data/atlas.voi"},
    {files, "label_23", "QLabel", NOTE(HEADING("PRT file"))},
    {files, "lbl_PRT_filename", "QLabel", ""},

    {"ConnectivityObjectUI", "pb_ComputingGraphFeature", "QProgressBar", nullptr},
    {"ConnectivityObjectUI", "pushButton", "QPushButton", "Close"},
};

class ResultsForm : public ResultsFixture
{
};

class ResultsControl : public ResultsForm, public testing::WithParamInterface<Control>
{
};

QVariant textOf(const QWidget &widget)
{
    const QVariant text = widget.property("text");
    return text.isValid() ? text : widget.property("title");
}

TEST_P(ResultsControl, IsAsDescribed)
{
    const Control &expected = GetParam();
    const auto *const widget = find<QWidget>(expected.name);
    ASSERT_NE(widget, nullptr);
    EXPECT_STREQ(widget->metaObject()->className(), expected.className);
    if (expected.text) {
        EXPECT_EQ(textOf(*widget).toString(), expected.text);
    }

    const QWidget *const page = QLatin1String(expected.page) == dialog().objectName()
                                    ? &dialog()
                                    : find<QWidget>(expected.page);
    EXPECT_EQ(widget->parentWidget(), page);
    EXPECT_EQ(widget->isEnabledTo(page), expected.enabled);

    const bool checkable = widget->property("checkable").toBool();
    EXPECT_EQ(checkable ? int(widget->property("checked").toBool()) : -1, expected.checked);

    const auto *const grid = qobject_cast<QGridLayout *>(page->layout());
    ASSERT_EQ(grid != nullptr, expected.row >= 0);
    if (grid) {
        int row = 0, column = 0, rows = 0, columns = 0;
        grid->getItemPosition(grid->indexOf(const_cast<QWidget *>(widget)), &row, &column, &rows,
                              &columns);
        EXPECT_EQ(row, expected.row);
        EXPECT_EQ(column, expected.column);
        EXPECT_EQ(rows, 1);
        EXPECT_EQ(columns, expected.columns);
    }
}

INSTANTIATE_TEST_SUITE_P(Form, ResultsControl, testing::ValuesIn(controls),
                         testing::PrintToStringParamName());

TEST_F(ResultsForm, ControlsAreAllThatThereIs)
{
    QStringList described;
    for (const Control &control : controls)
        described.append(QLatin1String(control.name));
    described += {"tabWidget", "tab_Visualization", "tab_GraphFeatures", "tab_Nodes", "tab_Filter",
                  "tab",       "tab_Metadata"};
    for (const QWidget *const widget : dialog().findChildren<QWidget *>()) {
        const QString name = widget->objectName();
        const bool ofQt = name.startsWith("qt_") || name.startsWith("Scroll");
        if (!name.isEmpty() && !ofQt) {
            EXPECT_TRUE(described.contains(name)) << qPrintable(name);
        }
    }
}

TEST_F(ResultsForm, Window)
{
    EXPECT_EQ(dialog().windowTitle(), "Dialog");
    EXPECT_EQ(dialog().size(), QSize(641, 640));
    EXPECT_TRUE(dialog().isWindow());
    EXPECT_FALSE(dialog().isModal());
}

TEST_F(ResultsForm, Tabs)
{
    const auto *const tabs = find<QTabWidget>("tabWidget");
    const struct {
        const char *name, *text;
        bool enabled;
    } expected[] = {{"tab_Visualization", "Visualization", true},
                    {"tab_GraphFeatures", "Graph Analysis", true},
                    {"tab_Nodes", "Nodes", false},
                    {"tab_Filter", "Fliter", false},
                    {"tab", "Data", true},
                    {"tab_Metadata", "Metadata", true}};
    ASSERT_EQ(tabs->count(), 6);
    EXPECT_EQ(tabs->currentIndex(), 0);
    for (int tab = 0; tab < tabs->count(); ++tab) {
        EXPECT_EQ(tabs->widget(tab)->objectName(), expected[tab].name);
        EXPECT_EQ(tabs->tabText(tab), expected[tab].text);
        EXPECT_TRUE(tabs->isTabEnabled(tab));
        EXPECT_EQ(tabs->widget(tab)->isEnabled(), expected[tab].enabled);
    }
}

TEST_F(ResultsForm, EveryTabCanBeSelected)
{
    auto *const tabs = find<QTabWidget>("tabWidget");
    for (int tab = 5; tab >= 0; --tab) {
        QTest::mouseClick(tabs->tabBar(), Qt::LeftButton, {},
                          tabs->tabBar()->tabRect(tab).center());
        EXPECT_EQ(tabs->currentIndex(), tab);
        EXPECT_TRUE(tabs->widget(tab)->isVisible());
    }
}

/// What a layout holds, in order: names of widgets and layouts, sizes of spacers.
QStringList contents(const QLayout *layout)
{
    QStringList found;
    for (int i = 0; layout && i < layout->count(); ++i) {
        QLayoutItem *const item = layout->itemAt(i);
        if (item->widget()) {
            found += item->widget()->objectName();
        } else if (item->layout()) {
            found += item->layout()->objectName();
        } else {
            const QSize size = item->sizeHint();
            const Qt::Orientations expanding = item->expandingDirections();
            found += QStringLiteral("%1x%2%3")
                         .arg(size.width())
                         .arg(size.height())
                         .arg(expanding & Qt::Horizontal ? " wide"
                              : expanding & Qt::Vertical ? " high"
                                                         : "");
        }
    }
    return found;
}

TEST_F(ResultsForm, Layouts)
{
    const struct {
        const char *name;
        QStringList contents;
    } expected[] = {
        {"verticalLayout_2",
         {"horizontalLayout_2", "20x10", "horizontalLayout_3", "groupbox_CircularPlot",
          "20x40 high"}},
        {"horizontalLayout_2", {"label_15", "40x20", "btn_PlotConnMtx", "40x20 wide"}},
        {"horizontalLayout_3", {"label_16", "40x20", "btn_CircularPlotConnMtx", "40x20 wide"}},
        {"verticalLayout_5", {"label_10", "ckBox_UseFilteredMatrix", "tblView_GraphFeatures"}},
        {"verticalLayout_4", {"label_6", "tblView_Nodes", "horizontalLayout_4"}},
        {"horizontalLayout_4", {"btn_HideAllNodes", "btn_ShowAllNodes"}},
        {"verticalLayout_3", {"label", "groupBox", "label_4", "groupBox_2", "20x40 high"}},
        {"verticalLayout_10", {"groupBox_3", "20x40 high"}},
        {"verticalLayout_9", {"groupBox_6", "20x40 high"}},
        {"verticalLayout_8",
         {"label_13", "lbl_VTC_filename", "label_17", "lbl_VOI_filename", "label_23",
          "lbl_PRT_filename"}},
        {"horizontalLayout", {"pb_ComputingGraphFeature", "40x20 wide", "pushButton"}},
    };
    for (const auto &[name, wanted] : expected) {
        SCOPED_TRACE(name);
        const auto *const layout = dialog().findChild<QLayout *>(QLatin1String(name));
        ASSERT_NE(layout, nullptr);
        EXPECT_EQ(contents(layout), wanted);
    }
    EXPECT_EQ(contents(dialog().layout()), QStringList({"tabWidget", "horizontalLayout"}));
    EXPECT_EQ(dialog().findChild<QLayout *>("horizontalLayout_4")->contentsMargins().top(), 10);
    for (const char *const name : {"gridLayout", "gridLayout_2", "gridLayout_3", "gridLayout_4"})
        EXPECT_NE(dialog().findChild<QGridLayout *>(QLatin1String(name)), nullptr) << name;
}

TEST_F(ResultsForm, Notes)
{
    const QString plain = "background-color: #feffbb;\ncolor: rgb(0, 0, 0);\npadding: 5px;";
    QHash<QString, QString> sheets;
    for (const char *const name : {"label_15", "label_16", "label_6", "label"})
        sheets[QLatin1String(name)] = plain;
    sheets["label_10"] = "color: rgb(0, 0, 0);\nbackground-color: #feffbb;\npadding: 5px;";
    sheets["label_4"] = "background-color: #feffbb;\npadding: 5px;\ncolor: rgb(0, 0, 0);";
    for (const QLabel *const label : dialog().findChildren<QLabel *>()) {
        const QString name = label->objectName();
        SCOPED_TRACE(qPrintable(name));
        EXPECT_EQ(label->styleSheet(), sheets.value(name));
        EXPECT_EQ(label->wordWrap(), sheets.contains(name) && name != "label_10");
        const bool isWide = name == "label_15" || name == "label_16";
        EXPECT_EQ(label->minimumWidth(), isWide ? 350 : 0);
    }
}

TEST_F(ResultsForm, SpinBoxes)
{
    const struct {
        const char *name;
        double low, high, step, value;
        int decimals;
    } expected[] = {
        {"sBox_CircPlot_ThicknessMultiplier", 0.01, 10.0, 0.1, 5.0, 2},
        {"dsBox_CircPlot_EdgesThickness", 1.0, 10.0, 0.5, 1.0, 1},
        {"sBox_FilterRange_LowBound", 0.0, 0.99, 0.1, 0.0, 2},
        {"sBox_FilterRange_UpperBound", 0.0, 1.0, 0.1, 1.0, 2},
    };
    for (const auto &wanted : expected) {
        SCOPED_TRACE(wanted.name);
        const auto *const box = find<QDoubleSpinBox>(wanted.name);
        EXPECT_DOUBLE_EQ(box->minimum(), wanted.low);
        EXPECT_DOUBLE_EQ(box->maximum(), wanted.high);
        EXPECT_DOUBLE_EQ(box->singleStep(), wanted.step);
        EXPECT_DOUBLE_EQ(box->value(), wanted.value);
        EXPECT_EQ(box->decimals(), wanted.decimals);
    }
    const auto *const size = find<QSpinBox>("sBox_CircPlot_NodesSize");
    EXPECT_EQ(size->minimum(), 1);
    EXPECT_EQ(size->maximum(), QSpinBox().maximum());
    EXPECT_EQ(size->singleStep(), 1);
    EXPECT_EQ(size->value(), 10);
    const auto *const share_ = find<QSpinBox>("sBox_FilterPerc_Perc");
    EXPECT_EQ(share_->minimum(), 1);
    EXPECT_EQ(share_->maximum(), 100);
    EXPECT_EQ(share_->singleStep(), 5);
    EXPECT_EQ(share_->value(), 85);
    EXPECT_EQ(share_->suffix(), "%");
}

TEST_F(ResultsForm, DetailsOfSingleControls)
{
    const auto *const slider = find<QxtSpanSlider>("widget_CircPlot_Spanner");
    EXPECT_EQ(slider->orientation(), Qt::Horizontal);
    EXPECT_EQ(slider->minimum(), 0);
    EXPECT_EQ(slider->maximum(), 1000);
    EXPECT_EQ(slider->lowerValue(), 0);
    EXPECT_EQ(slider->upperValue(), 1000);

    const Qt::Alignment alignment = find<QLabel>("lbl_Spanner_Low")->alignment();
    EXPECT_EQ(alignment, Qt::AlignRight | Qt::AlignVCenter);
    const auto *const line = find<QFrame>("line_2");
    EXPECT_EQ(line->frameShape(), QFrame::HLine);
    EXPECT_EQ(line->frameShadow(), QFrame::Sunken);

    EXPECT_FALSE(find<QPushButton>("btn_CircularPlotConnMtx")->isFlat());
    EXPECT_TRUE(find<QPushButton>("btn_HideAllNodes")->isFlat());
    EXPECT_TRUE(find<QPushButton>("btn_ShowAllNodes")->isFlat());
    find<QWidget>("tab_Filter")->setEnabled(true);
    for (const char *const name : {"groupBox", "groupBox_2"}) {
        const auto *const group = find<QGroupBox>(name);
        EXPECT_TRUE(group->isCheckable()) << name;
        EXPECT_TRUE(group->isEnabled()) << name;
        for (const QWidget *const child : group->findChildren<QWidget *>())
            EXPECT_FALSE(child->isEnabled()) << qPrintable(child->objectName());
    }

    const auto *const progress = find<QProgressBar>("pb_ComputingGraphFeature");
    EXPECT_EQ(progress->minimumWidth(), 200);
    EXPECT_EQ(progress->maximumWidth(), 200);
    EXPECT_EQ(progress->maximum(), 0);
    EXPECT_EQ(progress->value(), 0);
    EXPECT_FALSE(progress->isTextVisible());
    EXPECT_TRUE(progress->isHidden());

    const QIcon icon = find<QPushButton>("pushButton")->icon();
    EXPECT_EQ(icon.isNull(), !QIcon::hasThemeIcon("window-close"));
}

/// A desktop whose icons are the one that closes a window, in one colour.
TEST_F(ResultsForm, CloseBearsTheIconOfTheDesktop)
{
    ASSERT_TRUE(QDir(folder.path()).mkpath("plain/16x16"));
    QFile theme(folder.filePath("plain/index.theme"));
    ASSERT_TRUE(theme.open(QIODevice::WriteOnly));
    theme.write("[Icon Theme]\nName=plain\nDirectories=16x16\n[16x16]\nSize=16\nType=Fixed\n");
    theme.close();
    QImage icon(16, 16, QImage::Format_RGB32);
    icon.fill(Qt::darkGreen);
    ASSERT_TRUE(icon.save(folder.filePath("plain/16x16/window-close.png")));

    const QStringList pathsBefore = QIcon::themeSearchPaths();
    const QString themeBefore = QIcon::themeName();
    QIcon::setThemeSearchPaths({folder.path()});
    QIcon::setThemeName("plain");
    const QImage shown = find<QPushButton>("pushButton")->icon().pixmap(16, 16).toImage();
    QIcon::setThemeSearchPaths(pathsBefore);
    QIcon::setThemeName(themeBefore);
    ASSERT_FALSE(shown.isNull());
    EXPECT_EQ(shown.pixelColor(8, 8), QColor(Qt::darkGreen));
}

TEST_F(ResultsForm, Connections)
{
    const struct {
        const char *sender, *signal, *slot;
    } expected[] = {
        {"btn_PlotConnMtx", SIGNAL(clicked(bool)), SLOT(plotConnectivityMatrix(bool))},
        {"btn_CircularPlotConnMtx", SIGNAL(clicked(bool)), SLOT(plotCircular(bool))},
        {"chkBox_CircPlot_ShowLabels", SIGNAL(toggled(bool)),
         SLOT(circularPlot_toggleLabels(bool))},
        {"chkBox_CircPlot_ConnWeights", SIGNAL(toggled(bool)),
         SLOT(circularPlot_toggleUseWeights(bool))},
        {"sBox_CircPlot_ThicknessMultiplier", SIGNAL(valueChanged(double)),
         SLOT(circularPlot_thicknessMultiplierChanged(double))},
        {"chkBox_CircPlot_ConnColors", SIGNAL(toggled(bool)),
         SLOT(circularPlot_toggleColorizeEdges(bool))},
        {"dsBox_CircPlot_EdgesThickness", SIGNAL(valueChanged(double)),
         SLOT(circularPlot_setFixedThickness(double))},
        {"sBox_CircPlot_NodesSize", SIGNAL(valueChanged(int)),
         SLOT(circularPlot_setNodesSize(int))},
        {"ckBox_UseFilteredMatrix", SIGNAL(toggled(bool)),
         SLOT(graphfeatures_useFilteredMatrix(bool))},
        {"btn_exportFMRITS", SIGNAL(clicked()), SLOT(data_exportTimeseries())},
        {"btn_exportConnectivityMatrix", SIGNAL(clicked()), SLOT(data_exportConnectivityMatrix())},
        {"btn_exportMSTMatrix", SIGNAL(clicked()), SLOT(data_exportMSTMatrix())},
        {"pushButton", SIGNAL(clicked()), SLOT(close())},
    };
    for (const auto &[sender, signal, slot] : expected) {
        SCOPED_TRACE(sender);
        EXPECT_TRUE(QObject::disconnect(find<QWidget>(sender), signal, &dialog(), slot));
    }
    for (const Control &control : controls) { // nothing else, and nothing twice
        SCOPED_TRACE(control.name);
        EXPECT_FALSE(QObject::disconnect(find<QWidget>(control.name), nullptr, &dialog(), nullptr));
    }
}

TEST_F(ResultsForm, ReturnPressesNoButton)
{
    for (const QPushButton *const button : dialog().findChildren<QPushButton *>())
        EXPECT_FALSE(button->autoDefault()) << qPrintable(button->text());
}

TEST_F(ResultsForm, SlotsStandInTheirOrder)
{
    const char *const declared[] = {"prepareNodesTable()",
                                    "prepareGraphFeatures()",
                                    "inspectGraphFeature(bool)",
                                    "computeGraphFeature(bool)",
                                    "graphfeatures_useFilteredMatrix(bool)",
                                    "plotConnectivityMatrix(bool)",
                                    "plotCircular(bool)",
                                    "circularPlot_disableOptions()",
                                    "circularPlot_displayRangeChanged(int,int)",
                                    "circularPlot_toggleLabels(bool)",
                                    "circularPlot_setNodesSize(int)",
                                    "circularPlot_toggleUseWeights(bool)",
                                    "circularPlot_thicknessMultiplierChanged(double)",
                                    "circularPlot_setFixedThickness(double)",
                                    "circularPlot_toggleColorizeEdges(bool)",
                                    "data_exportTimeseries()",
                                    "data_exportConnectivityMatrix()",
                                    "data_exportMSTMatrix()"};
    const QMetaObject &meta = ConnectivityObjectUI::staticMetaObject;
    int index = meta.methodOffset();
    for (const char *const signature : declared) {
        ASSERT_LT(index, meta.methodCount());
        EXPECT_STREQ(meta.method(index).methodSignature().constData(), signature);
        EXPECT_EQ(meta.method(index).methodType(), QMetaMethod::Slot);
        ++index;
    }
    EXPECT_EQ(index, meta.methodCount());
}

TEST_F(ResultsForm, ASubjectWithAProtocolShowsNoneOfIt)
{
    subject->setPrtFile("/data/task.prt");
    setIntervals({{1, "rest"}, {11, "task"}});
    EXPECT_TRUE(find<QLabel>("lbl_PRT_filename")->text().isEmpty());
}

TEST_F(ResultsForm, FileNamesAreThoseOfTheMomentOfOpening)
{
    dialog();
    subject->setVtcFile("/data/other.vtc");
    subject->setVoiFile("/data/other.voi");
    EXPECT_EQ(find<QLabel>("lbl_VTC_filename")->text(), "/data/run.vtc");
    EXPECT_EQ(find<QLabel>("lbl_VOI_filename")->text(), "/data/atlas.voi");
}

TEST_F(ResultsForm, ALongPathLeavesTheWindowItsSize)
{
    const QString path = "/data/" + QString(300, 'x') + "/<b>.vtc";
    subject->setVtcFile(path);
    EXPECT_EQ(dialog().size(), QSize(641, 640));
    const auto *const label = find<QLabel>("lbl_VTC_filename");
    EXPECT_EQ(label->text(), path);
    EXPECT_EQ(asRead(label->toolTip()), path);
    EXPECT_EQ(label->textFormat(), Qt::PlainText);
}

/// Nothing that a user can do lights them up.
TEST_F(ResultsForm, WhatIsGreyedStaysSo)
{
    setNodes(2);
    addTimeseries(2);
    setIntervals({{1, "rest"}, {11, "task"}});
    object->computeMinimumSpanningTrees();
    click("btn_CircularPlotConnMtx");
    click("btn_PlotConnMtx");
    for (const char *const key : {"strength", "global_efficiency"}) {
        compute(key);
        inspect(key);
    }
    modals.expectFile(folder.filePath("net.csv"));
    click("btn_exportConnectivityMatrix");
    auto *const tabs = find<QTabWidget>("tabWidget");
    for (int tab = 0; tab < tabs->count(); ++tab)
        tabs->setCurrentIndex(tab);
    for (const char *const name :
         {"ckBox_UseFilteredMatrix", "btn_exportMSTMatrix", "tab_Nodes", "tab_Filter"})
        EXPECT_FALSE(find<QWidget>(name)->isEnabled()) << name;
    EXPECT_TRUE(find<QWidget>("pb_ComputingGraphFeature")->isHidden());
}

/// The controls that are there to be looked at, worked by force: the dialog stays as it was.
TEST_F(ResultsForm, ControlsWithoutEffect)
{
    compute("degree");
    const auto before = result("degree").value<FeatureValues>();
    EXPECT_FALSE(before.empty());
    find<QWidget>("tab_Nodes")->setEnabled(true);
    find<QWidget>("tab_Filter")->setEnabled(true);
    find<QWidget>("ckBox_UseFilteredMatrix")->setEnabled(true);
    click("btn_HideAllNodes");
    click("btn_ShowAllNodes");
    click("ckBox_UseFilteredMatrix");
    EXPECT_TRUE(find<QCheckBox>("ckBox_UseFilteredMatrix")->isChecked());
    for (const char *const name : {"groupBox", "groupBox_2"})
        find<QGroupBox>(name)->setChecked(true);
    find<QDoubleSpinBox>("sBox_FilterRange_LowBound")->setValue(0.9);
    find<QDoubleSpinBox>("sBox_FilterRange_UpperBound")->setValue(0.95);
    find<QSpinBox>("sBox_FilterPerc_Perc")->setValue(1);
    compute("degree");
    EXPECT_EQ(result("degree").value<FeatureValues>(), before);
    EXPECT_EQ(find<QTableView>("tblView_Nodes")->model()->rowCount(), 0);
    EXPECT_TRUE(windows<QWidget>().contains(find<QWidget>("tabWidget")));
    for (const QWidget *const child : windows<QWidget>())
        EXPECT_FALSE(child->isWindow()) << child->metaObject()->className();
}

} // namespace
