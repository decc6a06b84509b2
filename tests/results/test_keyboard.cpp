// SPDX-License-Identifier: GPL-3.0-or-later
//
// The dialog without a mouse: each control is reached with Tab, in the order of the eye, and has a
// name for screen readers.
#include "tests/results/results_fixture.h"

#include "plots/circular_plot.h"
#include "plots/line_plot.h"
#include "plots/view_matrix.h"
#include "results/graph_features_model.h"

#include <QAbstractSlider>
#include <QAbstractSpinBox>
#include <QAccessible>
#include <QTabBar>
#include <QTabWidget>
#include <QTableView>
#include <QTest>
#include <QtCharts/QChartView>

namespace
{

/// Its object's, or, in the table of measures, what it does with which.
QString nameOf(const QWidget *widget)
{
    const QString measure = widget->property("measure").toString();
    return measure.isEmpty() ? widget->objectName()
                             : qobject_cast<const QPushButton *>(widget)->text() + ' ' + measure;
}

class ResultsKeyboard : public ResultsFixture
{
protected:
    QTabWidget *tabs() { return find<QTabWidget>("tabWidget"); }

    void activate()
    {
        dialog().activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog()));
    }

    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QWidget *const focus = dialog().focusWidget();
        QTest::keyClick(focus ? focus : &dialog(), key, modifiers);
    }

    /// The names of the controls that a key visits, from the tab bar on and back to it.
    QStringList visited(const char *page, Qt::Key key)
    {
        tabs()->setCurrentWidget(find<QWidget>(page));
        tabs()->tabBar()->setFocus();
        QStringList order;
        for (int step = 0; step < 60; ++step) {
            press(key);
            if (dialog().focusWidget() == tabs()->tabBar())
                return order;
            order += nameOf(dialog().focusWidget());
        }
        ADD_FAILURE() << "the tabs are not reached again";
        return order;
    }

    void goTo(const QString &name)
    {
        for (int step = 0; step < 60 && nameOf(dialog().focusWidget()) != name; ++step)
            press(Qt::Key_Tab);
        EXPECT_EQ(nameOf(dialog().focusWidget()), name);
    }
};

QStringList reversed(QStringList names)
{
    std::reverse(names.begin(), names.end());
    return names;
}

struct Stops {
    const char *page;
    QStringList names; ///< before the button that closes
};

TEST_F(ResultsKeyboard, TabOrderIsThatOfTheEye)
{
    setIntervals({{1, "rest"}, {11, "task"}});
    click("btn_CircularPlotConnMtx"); // enables its options
    compute("degree");
    compute("nodal_ge");
    activate();
    const Stops pages[] = {
        {"tab_Visualization",
         {"btn_PlotConnMtx", "btn_CircularPlotConnMtx", "widget_CircPlot_Spanner",
          "chkBox_CircPlot_ShowLabels", "chkBox_CircPlot_ConnWeights",
          "sBox_CircPlot_ThicknessMultiplier", "chkBox_CircPlot_ConnColors",
          "dsBox_CircPlot_EdgesThickness", "sBox_CircPlot_NodesSize"}},
        {"tab_GraphFeatures",
         {"tblView_GraphFeatures", "compute clustering_coeff", "compute local_efficiency",
          "compute global_efficiency", "compute degree", "inspect degree",
          "compute eigenvector_centrality", "compute strength", "compute nodal_ge",
          "inspect nodal_ge"}},
        {"tab_Nodes", {}},
        {"tab_Filter", {}},
        {"tab", {"btn_exportFMRITS", "btn_exportConnectivityMatrix"}},
        {"tab_Metadata", {}},
    };
    for (const auto &[page, names] : pages) {
        SCOPED_TRACE(page);
        const QStringList expected = names + QStringList("pushButton");
        EXPECT_EQ(visited(page, Qt::Key_Tab), expected);
        EXPECT_EQ(visited(page, Qt::Key_Backtab), reversed(expected));
    }
}

TEST_F(ResultsKeyboard, TheOptionsAreNoStopsWithoutARing)
{
    activate();
    EXPECT_EQ(visited("tab_Visualization", Qt::Key_Tab),
              QStringList({"btn_PlotConnMtx", "btn_CircularPlotConnMtx", "pushButton"}));
}

TEST_F(ResultsKeyboard, AMeasureIsComputedAndInspected)
{
    activate();
    tabs()->setCurrentWidget(find<QWidget>("tab_GraphFeatures"));
    tabs()->tabBar()->setFocus();
    goTo("compute degree");
    press(Qt::Key_Space);
    EXPECT_TRUE(result("degree").isValid());
    press(Qt::Key_Tab);
    EXPECT_EQ(nameOf(dialog().focusWidget()), "inspect degree");
    press(Qt::Key_Space);
    ASSERT_NE(window<LinePlot>(), nullptr);
    EXPECT_TRUE(window<LinePlot>()->isVisible());
}

/// A heading has no button: it is the cell itself that is current there.
TEST_F(ResultsKeyboard, ArrowsWalkThroughTheTable)
{
    activate();
    tabs()->setCurrentWidget(find<QWidget>("tab_GraphFeatures"));
    features()->setFocus();
    features()->setCurrentIndex(featuresModel().index(1, 1));
    for (int row = 2; row < featuresModel().rowCount(); ++row) {
        press(Qt::Key_Down);
        EXPECT_EQ(features()->currentIndex().row(), row);
    }
}

TEST_F(ResultsKeyboard, PagesAreTurned)
{
    activate();
    tabs()->tabBar()->setFocus();
    for (int page = 1; page < 6; ++page) {
        press(Qt::Key_Right);
        EXPECT_EQ(tabs()->currentIndex(), page);
    }
    for (int page = 4; page >= 0; --page) {
        press(Qt::Key_Tab, Qt::ControlModifier | Qt::ShiftModifier);
        EXPECT_EQ(tabs()->currentIndex(), page);
    }
}

bool isControl(const QWidget *widget)
{
    return qobject_cast<const QAbstractButton *>(widget) ||
           qobject_cast<const QAbstractSpinBox *>(widget) ||
           qobject_cast<const QAbstractSlider *>(widget) ||
           qobject_cast<const QTableView *>(widget);
}

QString accessibleName(QWidget *widget)
{
    const QAccessibleInterface *const accessible = QAccessible::queryAccessibleInterface(widget);
    return accessible ? accessible->text(QAccessible::Name) : QString();
}

TEST_F(ResultsKeyboard, EveryControlHasANameOfItsOwn)
{
    setIntervals({{1, "rest"}, {11, "task"}});
    QStringList names;
    for (QWidget *const widget :
         find<QWidget>("qt_tabwidget_stackedwidget")->findChildren<QWidget *>()) {
        const bool ofQt = widget->objectName().startsWith("qt_") ||
                          widget->inherits("QScrollBar") || widget->inherits("QTableCornerButton");
        if (ofQt || !isControl(widget))
            continue;
        names += accessibleName(widget);
        if (!find<QWidget>("tab_Filter")->isAncestorOf(widget)) { // which is out of reach for good
            EXPECT_NE(QAccessible::queryAccessibleInterface(widget)->role(), QAccessible::Client)
                << qPrintable(nameOf(widget)) << " is of no kind";
        }
        EXPECT_NE(names.last(), "") << qPrintable(nameOf(widget));
        EXPECT_NE(names.last(), "Nodes & Edges") << qPrintable(nameOf(widget)) << " is one of many";
    }
    EXPECT_EQ(names.size(), 34);
    EXPECT_EQ(names.removeDuplicates(), 0);
    EXPECT_TRUE(names.contains("Thickness multiplier"));
    EXPECT_TRUE(names.contains("compute Nodal Global Efficiency"));
    EXPECT_TRUE(names.contains("inspect Global efficiency"));
}

// The plots

/// The controls that Tab visits in a window, beginning with that one.
QStringList visitedIn(QWidget &window, const char *first)
{
    window.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    auto *const begin = window.findChild<QWidget *>(first);
    begin->setFocus();
    QStringList names;
    do {
        const QWidget *const focus = window.focusWidget();
        const bool isNamed = !focus->objectName().isEmpty();
        names += isNamed ? focus->objectName() : accessibleName(window.focusWidget());
        QTest::keyClick(window.focusWidget(), Qt::Key_Tab);
    } while (window.focusWidget() != begin && names.size() < 60);
    return names;
}

TEST_F(ResultsKeyboard, TheLegendOfALinePlotComesBeforeItsChart)
{
    setIntervals({{1, "rest"}, {11, "cue", 1}, {21, "task"}});
    compute("strength");
    inspect("strength");
    auto *const plot = window<LinePlot>();
    plot->findChild<QtCharts::QChartView *>()->setObjectName("chart");
    EXPECT_EQ(visitedIn(*plot, "cbox_Conditions"),
              QStringList({"cbox_Conditions", "btn_Show", "btn_Hide", "scrollArea", "rest", "task",
                           "chart"}));
}

TEST_F(ResultsKeyboard, OtherPlotsHaveNamesToo)
{
    setIntervals({{1, "rest"}, {11, "task"}});
    click("btn_CircularPlotConnMtx");
    click("btn_PlotConnMtx");
    EXPECT_EQ(accessibleName(dialog().findChild<QWidget *>("hSlider_Conditions")), "Condition");
    EXPECT_EQ(accessibleName(dialog().findChild<QWidget *>("tableMatrix")), "Connectivity matrix");
    EXPECT_EQ(accessibleName(dialog().findChild<QWidget *>("graphicsView")), "Overview");
    EXPECT_EQ(visitedIn(*window<ViewMatrix>(), "tableMatrix"),
              QStringList({"tableMatrix", "graphicsView", "scrollArea"}));
}

} // namespace
