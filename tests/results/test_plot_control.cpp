// SPDX-License-Identifier: GPL-3.0-or-later
//
// The page of plots: the two windows, and the options that are passed on.
#include "tests/results/results_fixture.h"

#include "dataset/plugin_settings.h"
#include "plots/circular_plot.h"
#include "plots/circular_plot_widget.h"
#include "plots/my_graphics_simple_text_item.h"
#include "plots/my_slider.h"
#include "plots/plot_source.h"
#include "plots/span_slider.h"
#include "plots/view_matrix.h"

#include <QCheckBox>
#include <QDoubleSpinBox>
#include <QGraphicsScene>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTableWidget>
#include <QTest>
#include <QtCharts/QChart>
#include <QtCharts/QScatterSeries>
#include <QtCharts/QSplineSeries>

using namespace QtCharts;

namespace
{

constexpr const char *ringButton = "btn_CircularPlotConnMtx";
constexpr const char *browserButton = "btn_PlotConnMtx";

class PlotControl : public ResultsFixture
{
protected:
    /// Presses the button of the ring and gives its window.
    CircularPlot &ring()
    {
        click(ringButton);
        return *window<CircularPlot>();
    }
    ViewMatrix &browser()
    {
        click(browserButton);
        return *window<ViewMatrix>();
    }
    bool optionsEnabled() { return find<QGroupBox>("groupbox_CircularPlot")->isEnabled(); }
    void setSpan(int lower, int upper)
    {
        find<QxtSpanSlider>("widget_CircPlot_Spanner")->setSpan(lower, upper);
    }
    QString low() { return find<QLabel>("lbl_Spanner_Low")->text(); }
    QString upper() { return find<QLabel>("lbl_Spanner_Upper")->text(); }
};

QChart *chartOf(const CircularPlot &plot)
{
    for (QGraphicsItem *const item : plot.plotWidget()->scene()->items()) {
        if (auto *const chart = dynamic_cast<QChart *>(item))
            return chart;
    }
    ADD_FAILURE() << "no chart";
    return nullptr;
}

template <typename Series>
QList<Series *> seriesOf(const CircularPlot &plot)
{
    QList<Series *> found;
    for (QAbstractSeries *const series : chartOf(plot)->series()) {
        if (auto *const wanted = qobject_cast<Series *>(series))
            found += wanted;
    }
    return found;
}

double markerSize(const CircularPlot &plot)
{
    const auto nodes = seriesOf<QScatterSeries>(plot);
    EXPECT_EQ(nodes.size(), 1);
    return nodes.value(0) ? nodes[0]->markerSize() : -1.0;
}

QStringList labelsOf(const CircularPlot &plot, bool visible)
{
    QStringList names;
    for (QGraphicsItem *const item : plot.plotWidget()->scene()->items()) {
        auto *const label = dynamic_cast<MyGraphicsSimpleTextItem *>(item);
        if (label && label->isVisible() == visible)
            names += label->toPlainText();
    }
    names.removeDuplicates();
    names.sort();
    return names;
}

QVector<int> widthsOf(const CircularPlot &plot)
{
    QVector<int> widths;
    for (const QSplineSeries *const edge : seriesOf<QSplineSeries>(plot))
        widths += edge->pen().width();
    return widths;
}

QVector<double> visibleValues(const CircularPlot &plot)
{
    QVector<double> values;
    for (const QSplineSeries *const edge : seriesOf<QSplineSeries>(plot)) {
        if (edge->isVisible())
            values += edge->property("value").toDouble();
    }
    return values;
}

/// The widths of the edges of a matrix, in the order of drawing.
QVector<int> expectedWidths(const Eigen::MatrixXf &matrix, double multiplier)
{
    QVector<double> values;
    for (int i = 0; i < matrix.rows(); ++i) {
        for (int j = i + 1; j < matrix.cols(); ++j)
            values += double(matrix(i, j));
    }
    std::sort(values.begin(), values.end());
    QVector<int> widths;
    for (const double value : values)
        widths += int(double(float(multiplier)) * value);
    return widths;
}

// The ring

TEST_F(PlotControl, TheRingIsMadeOnceAndOnlyHidden)
{
    EXPECT_TRUE(windows<CircularPlot>().isEmpty());
    EXPECT_FALSE(optionsEnabled());
    CircularPlot &plot = ring();
    EXPECT_TRUE(plot.isVisible());
    EXPECT_FALSE(plot.testAttribute(Qt::WA_DeleteOnClose));
    EXPECT_EQ(plot.parent(), &dialog());
    EXPECT_TRUE(plot.isWindow());
    EXPECT_TRUE(optionsEnabled());
    EXPECT_EQ(seriesOf<QSplineSeries>(plot).size(), 15);
    EXPECT_EQ(labelsOf(plot, true), subject->voiNames);

    plot.close();
    EXPECT_FALSE(plot.isVisible());
    EXPECT_FALSE(optionsEnabled());
    const QSplineSeries *const edge = seriesOf<QSplineSeries>(plot)[3];
    setMatrices({weights(3, 5)});
    EXPECT_EQ(&ring(), &plot);
    EXPECT_TRUE(plot.isVisible());
    EXPECT_TRUE(optionsEnabled());
    EXPECT_EQ(seriesOf<QSplineSeries>(plot)[3], edge) << "drawn anew";
    EXPECT_EQ(&ring(), &plot) << "while it is open";
}

TEST_F(PlotControl, APlotThatIsCoveredOrMinimisedComesToTheFront)
{
    expectComesToFront(&ring(), [this] { click(ringButton); });
    expectComesToFront(&browser(), [this] { click(browserButton); });
}

TEST_F(PlotControl, TheRingShowsTheNamesOfTheSeeds)
{
    setNodes(9);
    ConnectivityScheme scheme;
    scheme.seedVois = {8, 1, 2, 3, 4, 5};
    subject->setScheme(scheme);
    EXPECT_EQ(labelsOf(ring(), true), QStringList({"V1", "V2", "V3", "V4", "V5", "V8"}));
}

TEST_F(PlotControl, TheOptionsKeepTheirValuesAndAreNotSentAgain)
{
    CircularPlot &plot = ring();
    find<QCheckBox>("chkBox_CircPlot_ShowLabels")->setChecked(false);
    setSpan(200, 700);
    plot.close();
    const QVector<double> shown = visibleValues(plot);
    setSpan(0, 1000);
    EXPECT_GT(visibleValues(plot).size(), shown.size()) << "the connection stays";
    setSpan(200, 700);
    ring();
    EXPECT_FALSE(find<QCheckBox>("chkBox_CircPlot_ShowLabels")->isChecked());
    EXPECT_EQ(visibleValues(plot), shown);
    EXPECT_EQ(labelsOf(plot, true), QStringList());
}

/// A new slice begins unfiltered whatever the slider shows; showing the ring again leaves it so.
TEST_F(PlotControl, TheSpanIsNotSentAgainWithTheNextShow)
{
    setIntervals({{1, "rest"}, {11, "task"}});
    CircularPlot &plot = ring();
    setSpan(200, 700);
    EXPECT_LT(visibleValues(plot).size(), 15);
    auto *const slices = plot.findChild<MySlider *>("hSlider_Conditions");
    slices->setValue(2);
    emit slices->sliderReleased();
    EXPECT_EQ(visibleValues(plot).size(), 15);
    plot.close();
    EXPECT_EQ(visibleValues(ring()).size(), 15);
    EXPECT_EQ(low(), "0.2");
    EXPECT_EQ(upper(), "0.7");
}

TEST_F(PlotControl, TheSliderDoesNotMoveBeforeTheFirstRing)
{
    auto *const slider = find<QxtSpanSlider>("widget_CircPlot_Spanner");
    slider->setFocus();
    EXPECT_FALSE(slider->hasFocus());
    QWindow *const window = dialog().windowHandle();
    const auto at = [this, slider](int x) {
        return slider->mapTo(&dialog(), {x, slider->height() / 2});
    };
    QTest::mousePress(window, Qt::LeftButton, {}, at(3));
    QTest::mouseMove(window, at(slider->width() / 2));
    QTest::mouseRelease(window, Qt::LeftButton, {}, at(slider->width() / 2));
    EXPECT_EQ(slider->lowerValue(), 0);
    EXPECT_EQ(low(), "0.0");
    ring();
    dialog().activateWindow();
    QTest::mousePress(window, Qt::LeftButton, {}, at(3));
    QTest::mouseMove(window, at(slider->width() / 2));
    QTest::mouseRelease(window, Qt::LeftButton, {}, at(slider->width() / 2));
    EXPECT_GT(slider->lowerValue(), 300) << "as it does afterwards";
    EXPECT_EQ(low(), QString::number(slider->lowerValue() / 1000.0));
}

TEST_F(PlotControl, EverySliderStepFiltersAndIsShown)
{
    CircularPlot &plot = ring();
    EXPECT_EQ(low(), "0.0");
    EXPECT_EQ(upper(), "1.0");
    EXPECT_EQ(visibleValues(plot).size(), 15);
    setSpan(250, 1000);
    EXPECT_EQ(low(), "0.25");
    EXPECT_EQ(upper(), "1");
    setSpan(0, 617);
    EXPECT_EQ(low(), "0");
    EXPECT_EQ(upper(), "0.617");
    QVector<double> expected;
    for (const QSplineSeries *const edge : seriesOf<QSplineSeries>(plot)) {
        const double value = edge->property("value").toDouble();
        if (value > 0 && value < 0.617)
            expected += value;
    }
    EXPECT_EQ(visibleValues(plot), expected);
    EXPECT_LT(expected.size(), 15);
    EXPECT_GT(expected.size(), 0);
    setSpan(1, 999);
    setSpan(0, 1000);
    EXPECT_EQ(low(), "0");
    EXPECT_EQ(upper(), "1");
}

TEST_F(PlotControl, TheSliderIsMovedWithTheKeyboardToo)
{
    ring();
    auto *const slider = find<QxtSpanSlider>("widget_CircPlot_Spanner");
    QTest::keyClick(slider, Qt::Key_Right);
    EXPECT_EQ(low(), "0.001");
    EXPECT_EQ(upper(), "1");
}

TEST_F(PlotControl, LabelsAreSwitchedWithTheBox)
{
    CircularPlot &plot = ring();
    click("chkBox_CircPlot_ShowLabels");
    EXPECT_EQ(labelsOf(plot, true), QStringList());
    click("chkBox_CircPlot_ShowLabels");
    EXPECT_EQ(labelsOf(plot, true), subject->voiNames);
}

TEST_F(PlotControl, NodesFollowTheirSize)
{
    CircularPlot &plot = ring();
    EXPECT_EQ(markerSize(plot), 10.0);
    find<QSpinBox>("sBox_CircPlot_NodesSize")->setValue(23);
    EXPECT_EQ(markerSize(plot), 23.0);
}

TEST_F(PlotControl, ThicknessFollowsItsThreeControls)
{
    CircularPlot &plot = ring();
    const Eigen::MatrixXf matrix = weights(6, 0);
    EXPECT_EQ(widthsOf(plot), expectedWidths(matrix, 5.0));
    find<QDoubleSpinBox>("sBox_CircPlot_ThicknessMultiplier")->setValue(9.35);
    EXPECT_EQ(widthsOf(plot), expectedWidths(matrix, 9.35));
    find<QDoubleSpinBox>("dsBox_CircPlot_EdgesThickness")->setValue(3.5);
    EXPECT_EQ(widthsOf(plot), expectedWidths(matrix, 9.35)) << "not in use";
    click("chkBox_CircPlot_ConnWeights");
    EXPECT_EQ(widthsOf(plot), QVector<int>(15, 3));
    for (const QSplineSeries *const edge : seriesOf<QSplineSeries>(plot))
        EXPECT_EQ(edge->property("pen-width"), 3.5) << "passed on whole";
    find<QDoubleSpinBox>("dsBox_CircPlot_EdgesThickness")->setValue(7.0);
    EXPECT_EQ(widthsOf(plot), QVector<int>(15, 7));
    click("chkBox_CircPlot_ConnWeights");
    EXPECT_EQ(widthsOf(plot), expectedWidths(matrix, 9.35));
}

TEST_F(PlotControl, EdgesAreColouredWithTheBox)
{
    CircularPlot &plot = ring();
    const auto colors = [&plot] {
        QList<QColor> found;
        for (const QSplineSeries *const edge : seriesOf<QSplineSeries>(plot))
            found += edge->pen().color();
        return found;
    };
    const QList<QColor> plain = colors();
    EXPECT_EQ(plain[0], QColor(0, 0, 0, 30));
    click("chkBox_CircPlot_ConnColors");
    const auto edges = seriesOf<QSplineSeries>(plot);
    for (int i = 0; i < edges.size(); ++i)
        EXPECT_EQ(colors()[i], edges[i]->property("cmap-color").value<QColor>());
    click("chkBox_CircPlot_ConnColors");
    EXPECT_EQ(colors(), plain);
}

TEST_F(PlotControl, WithoutAPlotTheOptionsAreSilent)
{
    dialog().circularPlot_toggleLabels(false);
    dialog().circularPlot_setNodesSize(3);
    dialog().circularPlot_toggleUseWeights(false);
    dialog().circularPlot_thicknessMultiplierChanged(2.0);
    dialog().circularPlot_setFixedThickness(2.0);
    dialog().circularPlot_toggleColorizeEdges(true);
    EXPECT_TRUE(windows<CircularPlot>().isEmpty());
    CircularPlot &plot = ring();
    EXPECT_EQ(labelsOf(plot, true), subject->voiNames);
    EXPECT_EQ(markerSize(plot), 10.0);
    EXPECT_EQ(widthsOf(plot), expectedWidths(weights(6, 0), 5.0));
}

TEST_F(PlotControl, TheRingOfAProtocolHasASliderWithItsConditions)
{
    setIntervals({{1, "rest"}, {11, "task"}, {21, "cue", 1}});
    object->computeMinimumSpanningTrees();
    CircularPlot &plot = ring();
    auto *const slider = plot.findChild<MySlider *>("hSlider_Conditions");
    ASSERT_TRUE(slider->isVisible());
    EXPECT_EQ(slider->maximum(), 3);
    const auto reds = [&plot] {
        int count = 0;
        for (const QSplineSeries *const edge : seriesOf<QSplineSeries>(plot))
            count += edge->property("mst_sig").toBool();
        return count;
    };
    EXPECT_EQ(reds(), 5);
    const double first = seriesOf<QSplineSeries>(plot)[0]->property("value").toDouble();
    slider->setValue(2);
    emit slider->sliderReleased();
    EXPECT_NE(seriesOf<QSplineSeries>(plot)[0]->property("value").toDouble(), first);
    EXPECT_EQ(reds(), 5);
    slider->setValue(3);
    emit slider->sliderReleased();
    EXPECT_TRUE(chartOf(plot)->series().isEmpty()) << "a trigger shows its title only";
}

TEST_F(PlotControl, WithoutMatricesTheRingIsEmpty)
{
    setMatrices({});
    EXPECT_TRUE(chartOf(ring())->series().isEmpty());
    EXPECT_TRUE(optionsEnabled());
    subject->setUseProtocol(true);
    setMatrices({Eigen::MatrixXf()});
    closeDialog();
    EXPECT_TRUE(seriesOf<QSplineSeries>(ring()).isEmpty());
}

// The browser

TEST_F(PlotControl, TheBrowserIsMadeOnceAndOnlyHidden)
{
    ViewMatrix &view = browser();
    EXPECT_TRUE(view.isVisible());
    EXPECT_FALSE(view.testAttribute(Qt::WA_DeleteOnClose));
    EXPECT_EQ(view.parent(), &dialog());
    EXPECT_TRUE(view.isWindow());
    EXPECT_FALSE(optionsEnabled());
    auto *const table = view.findChild<QTableWidget *>("tableMatrix");
    EXPECT_EQ(table->rowCount(), 6);
    QTableWidgetItem *const item = table->item(2, 4);
    view.close();
    EXPECT_FALSE(view.isVisible());
    setMatrices({weights(3, 5)});
    EXPECT_EQ(&browser(), &view);
    EXPECT_TRUE(view.isVisible());
    EXPECT_EQ(table->rowCount(), 6);
    EXPECT_EQ(table->item(2, 4), item) << "built anew";
}

TEST_F(PlotControl, TheBrowserShowsTheFirstMatrixWithItsNames)
{
    ViewMatrix &view = browser();
    auto *const table = view.findChild<QTableWidget *>("tableMatrix");
    for (int i = 0; i < 6; ++i) {
        EXPECT_EQ(table->horizontalHeaderItem(i)->text(), subject->voiNames[i]);
        EXPECT_EQ(table->verticalHeaderItem(i)->text(), subject->voiNames[i]);
        view.pickValue(i, 3);
        EXPECT_EQ(view.findChild<QLabel *>("lbl_Value")->text(),
                  QString::number(double(weights(6, 0)(i, 3)), 'g', 6));
    }
    QStringList texts;
    for (const QLabel *const label : view.findChildren<QLabel *>())
        texts += label->text();
    EXPECT_TRUE(texts.contains("No protocol loaded."));
    const auto *const scene = view.findChild<QGraphicsView *>("graphicsView")->scene();
    ASSERT_NE(scene, nullptr);
    EXPECT_EQ(scene->items().size(), 36);
}

TEST_F(PlotControl, TheBrowserNamesTheSeedsInTheirOrder)
{
    setNodes(9);
    ConnectivityScheme scheme;
    scheme.seedVois = {8, 1, 5, 3, 4, 2};
    subject->setScheme(scheme);
    const auto *const table = browser().findChild<QTableWidget *>("tableMatrix");
    const QStringList names = {"V8", "V1", "V5", "V3", "V4", "V2"};
    for (int i = 0; i < 6; ++i) {
        EXPECT_EQ(table->horizontalHeaderItem(i)->text(), names[i]);
        EXPECT_EQ(table->verticalHeaderItem(i)->text(), names[i]);
    }
}

QStringList conditionRows(const ViewMatrix &view)
{
    auto *const grid = view.findChild<QGridLayout *>("gridLayout_Conditions");
    QStringList rows;
    for (int row = 0; row < grid->rowCount() && grid->itemAtPosition(row, 2); ++row) {
        const auto text = [grid, row](int column) {
            return qobject_cast<QLabel *>(grid->itemAtPosition(row, column)->widget())->text();
        };
        rows += text(1) + "@" + text(2);
    }
    return rows;
}

TEST_F(PlotControl, TheBrowserOfAProtocolListsItsIntervals)
{
    setIntervals({{1, "rest"}, {11, "task"}, {21, "cue", 1}});
    EXPECT_EQ(conditionRows(browser()), QStringList({"rest@1", "task@11", "Trigger: cue@21"}));
}

TEST_F(PlotControl, TheBrowserListsNoMoreIntervalsThanThereAreMatrices)
{
    setIntervals({{1, "rest"}, {11, "task"}, {21, "rest"}});
    setMatrices({weights(6, 1), weights(6, 2)});
    EXPECT_EQ(conditionRows(browser()), QStringList({"rest@1", "task@11"}));
}

TEST_F(PlotControl, AProtocolThatIsNotInUseIsNotListed)
{
    setIntervals({{1, "rest"}, {11, "task"}});
    subject->setUseProtocol(false);
    EXPECT_EQ(conditionRows(browser()), QStringList());
}

TEST_F(PlotControl, WithoutMatricesTheBrowserIsEmpty)
{
    for (const std::vector<Eigen::MatrixXf> &matrices :
         {std::vector<Eigen::MatrixXf>(), {Eigen::MatrixXf()}}) {
        setMatrices(matrices);
        subject->setUseProtocol(true);
        ViewMatrix &view = browser();
        EXPECT_EQ(view.findChild<QTableWidget *>("tableMatrix")->rowCount(), 0);
        EXPECT_EQ(conditionRows(view), QStringList());
        closeDialog();
    }
}

TEST_F(PlotControl, TheBrowserIsLoggedWhenLoggingIsOn)
{
    dialog();
    takeMessages();
    PluginSettings::instance()->verboseLogging = true;
    click(browserButton);
    click(browserButton);
    PluginSettings::instance()->verboseLogging = false;
    int lines = 0;
    for (const LoggedMessage &message : takeMessages())
        lines += message.text == "void __cdecl ConnectivityObjectUI::plotConnectivityMatrix(bool)";
    EXPECT_EQ(lines, 2);
}

TEST_F(PlotControl, NothingIsLoggedWhileLoggingIsOff)
{
    ASSERT_FALSE(PluginSettings::instance()->verboseLogging);
    takeMessages();
    setIntervals({{1, "rest"}, {11, "task"}});
    ring();
    browser();
    for (const char *const key : {"strength", "global_efficiency"}) {
        compute(key);
        inspect(key);
    }
    modals.expectFile(folder.filePath("net.csv"));
    click("btn_exportConnectivityMatrix");
    closeDialog();
    // Qt tells of the style sheet of a hidden group whatever is logged.
    for (const LoggedMessage &message : takeMessages()) {
        if (message.text == "Unknown property visible")
            continue;
        EXPECT_NE(message.type, QtDebugMsg) << qPrintable(message.text);
    }
}

// From a plot to its result

TEST_F(PlotControl, PlotsFindTheirResult)
{
    EXPECT_EQ(connectivityObjectOf(&ring()), object.get());
    EXPECT_EQ(connectivityObjectOf(&browser()), object.get());
    QWidget stranger;
    QWidget child(&stranger);
    EXPECT_EQ(connectivityObjectOf(&stranger), nullptr);
    EXPECT_EQ(connectivityObjectOf(&child), nullptr);
}

} // namespace
