// SPDX-License-Identifier: GPL-3.0-or-later
//
// The form of the results dialog, and what its controls do.
#include "tests/results/results_fixture.h"

#include "results/feature_values.h"
#include "tests/support/as_read.h"
#include "tests/support/form_text.h"

#include <QCheckBox>
#include <QDir>
#include <QDoubleSpinBox>
#include <QFile>
#include <QGroupBox>
#include <QIcon>
#include <QImage>
#include <QLabel>
#include <QMetaMethod>
#include <QSpinBox>
#include <QTabBar>
#include <QTabWidget>
#include <QTableView>
#include <QTest>

namespace
{

const char *const form = R"form(
ConnectivityObjectUI ConnectivityObjectUI "Dialog" 641x640
  QVBoxLayout verticalLayout spacing 6 margins 11 11 11 11
    QTabWidget tabWidget currentIndex 0
      QWidget tab_Visualization tab "Visualization"
        QVBoxLayout verticalLayout_2 spacing 6 margins 9 9 9 9
          QHBoxLayout horizontalLayout_2 spacing 6
            QLabel label_15 "<html><head/><body><p><span style=" font-size:9pt; font-weight:600;">Connectivity matrix</span><br/><span style=" font-size:9pt;">Display the connectivity matrix in a table format.</span></p></body></html>" minimumSize 350x0 styleSheet "background-color: #feffbb;\ncolor: rgb(0, 0, 0);\npadding: 5px;" wordWrap policy Preferred/Preferred
            spacer 40x20 Fixed/Minimum
            QPushButton btn_PlotConnMtx "Visualize" accessibleName "Visualize connectivity matrix"
            spacer 40x20 Expanding/Minimum
          spacer 20x10 Minimum/Fixed
          QHBoxLayout horizontalLayout_3 spacing 6
            QLabel label_16 "<html><head/><body><p><span style=" font-size:9pt; font-weight:600;">Circular plot</span><br/><span style=" font-size:9pt;">Visualize the connections in an intuitive and interactive plot.</span></p></body></html>" minimumSize 350x0 styleSheet "background-color: #feffbb;\ncolor: rgb(0, 0, 0);\npadding: 5px;" wordWrap policy Preferred/Preferred
            spacer 40x20 Fixed/Minimum
            QPushButton btn_CircularPlotConnMtx "Visualize" accessibleName "Visualize circular plot"
            spacer 40x20 Expanding/Minimum
          QGroupBox groupbox_CircularPlot "Nodes && Edges" disabled
            QGridLayout gridLayout_4 spacing 6,6 margins 9 9 9 9
              QLabel label_20 "Display range" cell 0,0
              QLabel lbl_Spanner_Low "0.0" alignment AlignTrailing|AlignVCenter cell 0,1
              QxtSpanSlider widget_CircPlot_Spanner maximum 1000 orientation Horizontal lowerValue 0 upperValue 1000 lowerPosition 0 upperPosition 1000 handleMovementMode FreeMovement policy Expanding/Fixed cell 0,2 2 columns
              QLabel lbl_Spanner_Upper "1.0" cell 0,4
              QFrame line_2 frameShape HLine frameShadow Sunken policy Minimum/Fixed cell 2,0 6 columns
              QLabel label_7 "Show labels" cell 4,0
              QCheckBox chkBox_CircPlot_ShowLabels checked cell 4,1
              QLabel label_9 "Use weights for edges' thickness" cell 5,0
              QCheckBox chkBox_CircPlot_ConnWeights checked cell 5,1
              QLabel label_14 "Thickness multiplier" cell 5,3
              QDoubleSpinBox sBox_CircPlot_ThicknessMultiplier "5.00" minimum 0.01 maximum 10 singleStep 0.1 value 5 cell 5,4
              QLabel label_11 "Use weights for edge's colors" cell 14,0
              QCheckBox chkBox_CircPlot_ConnColors cell 14,1 5 columns
              QLabel label_12 "Fixed thickness" cell 15,0
              QDoubleSpinBox dsBox_CircPlot_EdgesThickness "1.0" decimals 1 minimum 1 maximum 10 singleStep 0.5 value 1 cell 15,1
              QLabel label_8 "Nodes' size" cell 19,0
              QSpinBox sBox_CircPlot_NodesSize "10" minimum 1 value 10 cell 19,1
          spacer 20x40 Minimum/Expanding
      QWidget tab_GraphFeatures tab "Graph Analysis"
        QVBoxLayout verticalLayout_5 spacing 6 margins 9 9 9 9
          QLabel label_10 "Graph theoretic features" styleSheet "color: rgb(0, 0, 0);\nbackground-color: #feffbb;\npadding: 5px;"
          QCheckBox ckBox_UseFilteredMatrix "Use filtered matrix" disabled
          QTableView tblView_GraphFeatures accessibleName "Graph theoretic features" no tabKeyNavigation
      QWidget tab_Nodes disabled tab "Nodes"
        QVBoxLayout verticalLayout_4 spacing 6 margins 9 9 9 9
          QLabel label_6 "<html><head/><body><p><span style=" font-size:9pt;">Select which nodes to include to the visualization and analysis procedure.</span></p></body></html>" styleSheet "background-color: #feffbb;\ncolor: rgb(0, 0, 0);\npadding: 5px;" wordWrap policy Preferred/Preferred
          QTableView tblView_Nodes accessibleName "Nodes" no tabKeyNavigation no cornerButtonEnabled
          QHBoxLayout horizontalLayout_4 spacing 6 margins 0 10 0 0
            QPushButton btn_HideAllNodes "hide all" flat
            QPushButton btn_ShowAllNodes "show all" flat
      QWidget tab_Filter disabled tab "Fliter"
        QVBoxLayout verticalLayout_3 spacing 6 margins 9 9 9 9
          QLabel label "<html><head/><body><p><span style=" font-size:9pt;">Filter out the connections given the arbitrary boundaries.</span></p></body></html>" styleSheet "background-color: #feffbb;\ncolor: rgb(0, 0, 0);\npadding: 5px;" wordWrap policy Preferred/Preferred
          QGroupBox groupBox "W&ithin Range" focusPolicy StrongFocus checkable
            QGridLayout gridLayout spacing 6,6 margins 9 9 9 9
              QLabel label_2 "Low boundary" cell 0,0
              QDoubleSpinBox sBox_FilterRange_LowBound "0.00" maximum 0.99 singleStep 0.1 cell 0,2
              QLabel label_3 "Upper boundary" cell 1,0
              QDoubleSpinBox sBox_FilterRange_UpperBound "1.00" maximum 1 singleStep 0.1 value 1 cell 1,2
          QLabel label_4 "<html><head/><body><p><span style=" font-size:9pt;">Filter in only the % of the strongest connections.</span></p></body></html>" styleSheet "background-color: #feffbb;\npadding: 5px;\ncolor: rgb(0, 0, 0);" wordWrap policy Preferred/Preferred
          QGroupBox groupBox_2 "Percen&tage" focusPolicy StrongFocus checkable
            QGridLayout gridLayout_2 spacing 6,6 margins 9 9 9 9
              QSpinBox sBox_FilterPerc_Perc "85%" suffix "%" minimum 1 maximum 100 singleStep 5 value 85 cell 0,1
              QLabel label_5 "of strongest connections" cell 0,2
          spacer 20x40 Minimum/Expanding
      QWidget tab tab "Data"
        QVBoxLayout verticalLayout_10 spacing 6 margins 9 9 9 9
          QGroupBox groupBox_3 "Export"
            QGridLayout gridLayout_3 spacing 6,6 margins 9 9 9 9
              QLabel label_19 "fMRI time series" cell 0,0
              QPushButton btn_exportFMRITS "select..." accessibleName "Export fMRI time series" cell 0,2
              QLabel label_18 "Connectivity matrix" cell 1,0
              QPushButton btn_exportConnectivityMatrix "select..." accessibleName "Export connectivity matrix" cell 1,2
              QLabel label_21 "Filtered MST matrix" cell 2,0
              QLabel label_22 "(if available)" cell 2,1
              QPushButton btn_exportMSTMatrix "select..." accessibleName "Export filtered MST matrix" disabled cell 2,2
          spacer 20x40 Minimum/Expanding
      QWidget tab_Metadata tab "Metadata"
        QVBoxLayout verticalLayout_9 spacing 6 margins 9 9 9 9
          QGroupBox groupBox_6
            QVBoxLayout verticalLayout_8 spacing 6 margins 9 9 9 9
              QLabel label_13 "<html><head/><body><p><span style=" font-weight:600;">VTC file</span></p></body></html>"
              PathLabel lbl_VTC_filename "/data/run.vtc" toolTip "/data/run.vtc" textFormat PlainText policy Ignored/Preferred
              QLabel label_17 "<html><head/><body><p><span style=" font-weight:600;">VOI file</span></p></body></html>"
              PathLabel lbl_VOI_filename "/data/atlas.voi" toolTip "/data/atlas.voi" textFormat PlainText policy Ignored/Preferred
              QLabel label_23 "<html><head/><body><p><span style=" font-weight:600;">PRT file</span></p></body></html>"
              QLabel lbl_PRT_filename
          spacer 20x40 Minimum/Expanding
    QHBoxLayout horizontalLayout spacing 6
      QProgressBar pb_ComputingGraphFeature minimumSize 200x0 maximumSize 200x16777215 accessibleName "Progress of a measure" maximum 0 value 0 no textVisible hidden
      spacer 40x20 Expanding/Minimum
      QPushButton pushButton "Close"
)form";

class ResultsForm : public ResultsFixture
{
};

TEST_F(ResultsForm, IsAsDescribed)
{
    EXPECT_EQ('\n' + formText(ConnectivityObjectUI(object.get(), nullptr)) + '\n', form);
}

TEST_F(ResultsForm, IsAWindowBesideTheOthers)
{
    EXPECT_TRUE(dialog().isWindow());
    EXPECT_FALSE(dialog().isModal());
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

/// Which a form can leave to Qt.
TEST_F(ResultsForm, GroupsThatAreOffDisableTheirControlsOnly)
{
    find<QWidget>("tab_Filter")->setEnabled(true);
    for (const char *const name : {"groupBox", "groupBox_2"}) {
        const auto *const group = find<QGroupBox>(name);
        EXPECT_TRUE(group->isEnabled()) << name;
        for (const QWidget *const child : group->findChildren<QWidget *>())
            EXPECT_FALSE(child->isEnabled()) << qPrintable(child->objectName());
    }
}

TEST_F(ResultsForm, CloseBearsNoIconWhereTheDesktopHasNone)
{
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
    for (const QWidget *const control : dialog().findChildren<QWidget *>()) {
        const QString name = control->objectName();
        if (name.isEmpty() || name.startsWith("qt_")) // Qt's own within a control
            continue;
        SCOPED_TRACE(qPrintable(name)); // nothing else, and nothing twice
        EXPECT_FALSE(QObject::disconnect(control, nullptr, &dialog(), nullptr));
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

TEST_F(ResultsForm, ALongPathIsCutInItsMiddle)
{
    const QString begin = "/home/someone/study & more/";
    const QString end = "/sub-01/<b>run.vtc";
    subject->setVtcFile(begin + QString(300, 'x') + end);
    subject->setVoiFile("/data/atlas & <i>.voi");
    for (const char *const name : {"lbl_VTC_filename", "lbl_VOI_filename"}) {
        auto *const label = find<QLabel>(name);
        showPage(label);
        QLabel plain(label->parentWidget()); // with the text that is to be read
        plain.setTextFormat(Qt::PlainText);
        plain.setText(label->fontMetrics().elidedText(label->text(), Qt::ElideMiddle,
                                                      label->contentsRect().width()));
        plain.resize(label->size());
        EXPECT_EQ(label->grab().toImage(), plain.grab().toImage()) << name;
        if (name == std::string("lbl_VTC_filename")) {
            EXPECT_TRUE(plain.text().startsWith(begin)) << qPrintable(plain.text());
            EXPECT_TRUE(plain.text().endsWith(end)) << qPrintable(plain.text());
        } else {
            EXPECT_EQ(plain.text(), subject->voiFile());
        }
    }
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
