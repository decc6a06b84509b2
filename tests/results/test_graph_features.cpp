// SPDX-License-Identifier: GPL-3.0-or-later
//
// The page of graph measures: its table, what its buttons compute, and the plots.
#include "tests/results/results_fixture.h"

#include "plots/line_plot.h"
#include "plots/timeseries_line_plot.h"
#include "results/feature_values.h"
#include "results/graph_features_model.h"
#include "tests/nodalis/reference_data.h"
#include "tests/plots/line_plot_fixture.h"
#include "tests/support/as_read.h"

#include <QCheckBox>
#include <QComboBox>
#include <QHeaderView>
#include <QHelpEvent>
#include <QLabel>
#include <QMessageBox>
#include <QTableView>
#include <QTest>
#include <QToolTip>
#include <QWhatsThis>
#include <QtCharts/QBarCategoryAxis>
#include <QtCharts/QChartView>
#include <QtCharts/QLineSeries>
#include <QtCharts/QValueAxis>
#include <nodalis/nodalis.h>

using namespace QtCharts;

namespace
{

/// One row of the table. The key of a heading is null.
struct Row {
    const char *heading;
    const char *key;
    const char *name;
    const char *description;
    const char *title;
    Eigen::ArrayXf (*perNode)(const Eigen::MatrixXf &);
    bool asks;
};

void PrintTo(const Row &row, std::ostream *out)
{
    *out << row.key;
}

const Row rows[] = {
    {"Segragation", nullptr, "", "", "", nullptr, false},
    {"Segragation", "clustering_coeff", "Clustering coefficient",
     "The clustering coefficient of a node is the probability that the neighors of this node are "
     "also connected to each other. It is considered to be a measure of the local connectivity or "
     "\xe2\x80\x9c"
     "cliqueness\xe2\x80\x9d of a graph.",
     "Clustering Coefficient", nodalis::clustering_coeff, false},
    {"Segragation", "local_efficiency", "Local efficiency",
     "The local efficiency is the global efficiency computed on the neighborhood of the node, and "
     "is related to the clustering coefficient.",
     "Local Efficiency", nodalis::local_efficiency, true},
    {"Integration", nullptr, "", "", "", nullptr, false},
    {"Integration", "global_efficiency", "Global efficiency",
     "The global efficiency is the average inverse shortest path length in the network, and is "
     "inversely related to the characteristic path length.",
     "Global Efficiency", nullptr, false},
    {"Centrality", nullptr, "", "", "", nullptr, false},
    {"Centrality", "degree", "Degree",
     "Measure the importance of each node through their number/weights of connections.", "Degree",
     nodalis::degree, false},
    {"Centrality", "eigenvector_centrality", "Eigenvector centrality",
     "Eigenector centrality is a self-referential measure of centrality; nodes have higher values "
     "if they connect to other nodes that also exhibit high eigenvector centrality.",
     "Eigenvector Centrality", nodalis::eigenvector_centrality, true},
    {"Nodal Features", nullptr, "", "", "", nullptr, false},
    {"Nodal Features", "strength", "Strength",
     "The sum of the weights of the connections of each node.", "Strength", nodalis::strength,
     false},
    {"Nodal Features", "nodal_ge", "Nodal Global Efficiency",
     "The average of the inverse shortest path length from a node to all the other in the graph.",
     "Nodal Global Efficiency", nodalis::nodal_global_efficiency, true},
};
constexpr int rowCount = 11;

std::vector<Row> measures(bool perNodeOnly)
{
    std::vector<Row> found;
    for (const Row &row : rows) {
        if (row.key && (row.perNode || !perNodeOnly))
            found.push_back(row);
    }
    return found;
}

std::vector<float> listOf(const Eigen::ArrayXf &values)
{
    return {values.data(), values.data() + values.size()};
}

FeatureValues expectedValues(const Row &measure, const std::vector<Eigen::MatrixXf> &matrices)
{
    FeatureValues values;
    for (const Eigen::MatrixXf &matrix : matrices)
        values.push_back(listOf(measure.perNode(matrix)));
    return values;
}

class GraphFeatures : public ResultsFixture
{
protected:
    FeatureValues values(const QString &key) { return result(key).value<FeatureValues>(); }
    QString shownText(int row, int column)
    {
        return featuresModel().index(row, column).data().toString();
    }
    void answer(QMessageBox::StandardButton button)
    {
        modals.expect<QMessageBox>([button](QMessageBox &box) {
            EXPECT_EQ(box.windowTitle(), "Caution.");
            EXPECT_EQ(box.text(),
                      "The matrix is too big and the computation might take too long. Continue?");
            EXPECT_EQ(box.standardButtons(), QMessageBox::Yes | QMessageBox::No);
            EXPECT_EQ(box.parent(), nullptr);
            EXPECT_TRUE(box.isModal());
            QTest::mouseClick(box.button(button), Qt::LeftButton);
        });
    }
    void setNamedNodes(int count)
    {
        setNodes(count);
        setMatrices({weights(count, 1)});
    }
};

QChart *chartOf(QWidget &window)
{
    return window.findChild<QChartView *>()->chart();
}

QList<QLineSeries *> linesOf(QWidget &window)
{
    QList<QLineSeries *> lines;
    for (QAbstractSeries *const series : chartOf(window)->series())
        lines += qobject_cast<QLineSeries *>(series);
    return lines;
}

QStringList namesOf(const QList<QLineSeries *> &lines)
{
    QStringList names;
    for (const QLineSeries *const line : lines)
        names += line->name();
    return names;
}

/// The y values of a line whose x values count from 0.
std::vector<float> heightsOf(const QLineSeries *line)
{
    std::vector<float> heights;
    for (int i = 0; i < line->count(); ++i) {
        EXPECT_EQ(line->at(i).x(), i);
        heights.push_back(float(line->at(i).y()));
    }
    return heights;
}

QStringList categoriesOf(QWidget &window)
{
    const auto axes = chartOf(window)->axes(Qt::Horizontal);
    auto *const axis = axes.size() == 1 ? qobject_cast<QBarCategoryAxis *>(axes.first()) : nullptr;
    return axis ? axis->categories() : QStringList();
}

// The table

TEST_F(GraphFeatures, TableHasTheRowsInTheirOrder)
{
    const GraphFeaturesModel &model = featuresModel();
    EXPECT_EQ(model.QObject::parent(), features());
    ASSERT_EQ(model.rowCount(), rowCount);
    for (int row = 0; row < rowCount; ++row) {
        SCOPED_TRACE(row);
        const Row &expected = rows[row];
        const bool isHeading = expected.key == nullptr;
        EXPECT_EQ(shownText(row, 0), isHeading ? "" : expected.heading);
        EXPECT_EQ(shownText(row, 1), isHeading ? expected.heading : expected.name);
        EXPECT_EQ(shownText(row, 2), expected.description);
        EXPECT_EQ(model.index(row, 2).data(Qt::ToolTipRole).toString(), expected.description);
        EXPECT_EQ(model.index(row, 1).data(Qt::FontRole).value<QFont>().bold(), isHeading);
        EXPECT_EQ(features()->rowSpan(row, 1), 1);
        EXPECT_EQ(features()->columnSpan(row, 1), isHeading ? 4 : 1);
        if (isHeading)
            continue;
        const FeatureRow record = model.feature(expected.key);
        EXPECT_EQ(record.type, expected.heading);
        EXPECT_EQ(record.name, expected.name);
        EXPECT_EQ(record.description, expected.description);
        EXPECT_EQ(record.key, expected.key);
        EXPECT_EQ(record.scalar, expected.perNode == nullptr);
    }
}

/// By name, for whoever reads a result out of a variant; in a process that has made none yet.
TEST_F(GraphFeatures, TypesOfResultsAreKnownOnceTheTableIsThere)
{
    dialog();
    for (const char *const type : {"std::vector<float>", "FeatureValues"})
        EXPECT_NE(QMetaType::type(type), int(QMetaType::UnknownType)) << type;
}

TEST_F(GraphFeatures, TableHasItsColumns)
{
    EXPECT_TRUE(features()->isColumnHidden(0));
    for (int column = 1; column < 5; ++column)
        EXPECT_FALSE(features()->isColumnHidden(column)) << column;
    const QHeaderView *const header = features()->horizontalHeader();
    EXPECT_EQ(header->sectionResizeMode(0), QHeaderView::ResizeToContents);
    EXPECT_EQ(header->sectionResizeMode(1), QHeaderView::ResizeToContents);
    EXPECT_EQ(header->sectionResizeMode(2), QHeaderView::Stretch);
    EXPECT_EQ(header->sectionResizeMode(3), QHeaderView::Interactive);
    EXPECT_EQ(header->sectionResizeMode(4), QHeaderView::Interactive);
}

TEST_F(GraphFeatures, HeadersStandOverTheirButtons)
{
    showPage(features());
    const QHeaderView *const header = features()->horizontalHeader();
    EXPECT_TRUE(header->isVisible());
    EXPECT_EQ(header->model()->headerData(3, Qt::Horizontal), "");
    EXPECT_EQ(header->model()->headerData(4, Qt::Horizontal), "Result");
    for (const Row &measure : measures(true)) {
        const int compute = computeButton(measure.key)->geometry().center().x();
        const int inspect = inspectButton(measure.key)->geometry().center().x();
        EXPECT_EQ(header->logicalIndexAt(compute), 3) << measure.key;
        EXPECT_EQ(header->logicalIndexAt(inspect), 4) << measure.key;
    }
}

class FeatureButtons : public GraphFeatures, public testing::WithParamInterface<bool>
{
};

TEST_P(FeatureButtons, StandInEveryRowOfAMeasure)
{
    const bool useProtocol = GetParam();
    if (useProtocol)
        setIntervals({{1, "rest"}, {11, "task"}});
    for (int row = 0; row < rowCount; ++row) {
        SCOPED_TRACE(row);
        const bool isMeasure = rows[row].key != nullptr;
        const bool inspects = isMeasure && (rows[row].perNode || useProtocol);
        for (const int column : {3, 4}) {
            QWidget *const cell = features()->indexWidget(featuresModel().index(row, column));
            const bool isThere = column == 3 ? isMeasure : inspects;
            ASSERT_EQ(cell != nullptr, isThere);
            if (!cell)
                continue;
            const auto *const button = qobject_cast<QPushButton *>(cell);
            ASSERT_NE(button, nullptr);
            EXPECT_EQ(button->text(), column == 3 ? "compute" : "inspect");
            EXPECT_TRUE(button->isFlat());
            EXPECT_EQ(button->isEnabled(), column == 3);
            EXPECT_EQ(button->property("row"), QVariant(row));
            EXPECT_EQ(button->property("measure"), QVariant(QString(rows[row].key)));
            EXPECT_FALSE(button->property("win_title").isValid());
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Protocol, FeatureButtons, testing::Bool(),
                         testing::PrintToStringParamName());

// Computing

class PerNodeMeasure : public GraphFeatures, public testing::WithParamInterface<Row>
{
};

TEST_P(PerNodeMeasure, IsThatOfTheLibraryForEverySlice)
{
    setIntervals({{1, "rest"}, {11, "task"}, {21, "rest"}});
    const Row &measure = GetParam();
    compute(measure.key);
    EXPECT_EQ(values(measure.key), expectedValues(measure, object->matrices()));
    EXPECT_TRUE(inspectButton(measure.key)->isEnabled());
    EXPECT_EQ(inspectButton(measure.key)->property("win_title"), QVariant(QString(measure.title)));
    EXPECT_EQ(shownText(rowOf(measure.key), 4), "");
}

TEST_P(PerNodeMeasure, TakesMatricesOfDifferentSizes)
{
    setMatrices({weights(6, 1), weights(3, 2), weights(8, 3)});
    compute(GetParam().key);
    EXPECT_EQ(values(GetParam().key), expectedValues(GetParam(), object->matrices()));
}

TEST_P(PerNodeMeasure, IsPlottedAsItWasComputed)
{
    setIntervals({{1, "rest"}, {11, "task"}, {21, "rest"}});
    const Row &measure = GetParam();
    compute(measure.key);
    inspect(measure.key);
    auto *const plot = window<LinePlot>();
    ASSERT_NE(plot, nullptr);
    EXPECT_TRUE(plot->isVisible());
    EXPECT_EQ(plot->windowTitle(), QStringLiteral("Plot: %1").arg(measure.title));
    EXPECT_EQ(chartOf(*plot)->title(), QStringLiteral("<b>%1</b>").arg(measure.title));
    const QList<QLineSeries *> lines = linesOf(*plot);
    EXPECT_EQ(namesOf(lines), QStringList({"rest", "task", "rest"}));
    const FeatureValues expected = expectedValues(measure, object->matrices());
    ASSERT_EQ(lines.size(), int(expected.size()));
    for (int i = 0; i < lines.size(); ++i)
        EXPECT_EQ(heightsOf(lines[i]), expected[std::size_t(i)]);
}

TEST_P(PerNodeMeasure, AnotherComputeReplacesTheResult)
{
    compute(GetParam().key);
    setMatrices({weights(6, 7)});
    compute(GetParam().key);
    EXPECT_EQ(values(GetParam().key), expectedValues(GetParam(), {weights(6, 7)}));
}

INSTANTIATE_TEST_SUITE_P(Measures, PerNodeMeasure, testing::ValuesIn(measures(true)),
                         testing::PrintToStringParamName());

class AnyMeasure : public GraphFeatures, public testing::WithParamInterface<Row>
{
};

TEST_P(AnyMeasure, DoesNotAskAtFiftyRows)
{
    setMatrices({weights(50, 1)});
    compute(GetParam().key); // a question would be unexpected
    EXPECT_TRUE(result(GetParam().key).isValid());
}

TEST_P(AnyMeasure, AsksAtFiftyOneRowsIfItIsLong)
{
    setMatrices({weights(51, 1), weights(51, 2)});
    if (GetParam().asks)
        answer(QMessageBox::Yes); // once for both
    compute(GetParam().key);
    EXPECT_TRUE(result(GetParam().key).isValid());
    EXPECT_EQ(modals.remaining(), 0u);
}

TEST_P(AnyMeasure, ComputesNothingWithoutMatrices)
{
    for (const std::vector<Eigen::MatrixXf> &matrices :
         {std::vector<Eigen::MatrixXf>(), {Eigen::MatrixXf()}}) {
        setMatrices(matrices);
        compute(GetParam().key);
        EXPECT_FALSE(result(GetParam().key).isValid());
        if (inspectButton(GetParam().key)) {
            EXPECT_FALSE(inspectButton(GetParam().key)->isEnabled());
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Measures, AnyMeasure, testing::ValuesIn(measures(false)),
                         testing::PrintToStringParamName());

TEST_F(GraphFeatures, NoLeavesNothingBehind)
{
    setMatrices({weights(51, 1)});
    answer(QMessageBox::No);
    compute("nodal_ge");
    EXPECT_FALSE(result("nodal_ge").isValid());
    EXPECT_FALSE(inspectButton("nodal_ge")->isEnabled());
    EXPECT_FALSE(inspectButton("nodal_ge")->property("win_title").isValid());
    EXPECT_TRUE(computeButton("nodal_ge")->isEnabled());
}

TEST_F(GraphFeatures, NoKeepsTheResultBefore)
{
    compute("local_efficiency");
    const FeatureValues before = values("local_efficiency");
    setMatrices({weights(51, 1)});
    answer(QMessageBox::No);
    compute("local_efficiency");
    EXPECT_EQ(values("local_efficiency"), before);
    EXPECT_TRUE(inspectButton("local_efficiency")->isEnabled());
}

TEST_F(GraphFeatures, EscapeMeansNo)
{
    setMatrices({weights(51, 1)});
    modals.expect<QMessageBox>([](QMessageBox &box) { QTest::keyClick(&box, Qt::Key_Escape); });
    compute("nodal_ge");
    EXPECT_FALSE(result("nodal_ge").isValid());
}

TEST_F(GraphFeatures, OnlyTheFirstMatrixDecidesWhetherToAsk)
{
    setMatrices({weights(4, 1), weights(51, 2)});
    compute("nodal_ge");
    EXPECT_TRUE(result("nodal_ge").isValid());
}

TEST_F(GraphFeatures, TheProgressBarNeverShows)
{
    setIntervals({{1, "rest"}});
    for (const Row &measure : measures(false)) {
        compute(measure.key);
        EXPECT_TRUE(find<QWidget>("pb_ComputingGraphFeature")->isHidden());
    }
}

TEST_F(GraphFeatures, MeasuresKeepTheirResultsApart)
{
    for (const Row &measure : measures(false))
        compute(measure.key);
    for (const Row &measure : measures(true))
        EXPECT_EQ(values(measure.key), expectedValues(measure, object->matrices())) << measure.key;
    EXPECT_EQ(result("global_efficiency"), nodalis::global_efficiency(weights(6, 0)));
}

TEST_F(GraphFeatures, ResultsGoWithTheDialog)
{
    compute("degree");
    closeDialog();
    EXPECT_FALSE(result("degree").isValid());
    EXPECT_FALSE(inspectButton("degree")->isEnabled());
}

TEST_F(GraphFeatures, SlotsLeaveOtherSendersAlone)
{
    dialog().computeGraphFeature(true);
    dialog().inspectGraphFeature(true);
    QCheckBox other;
    QObject::connect(&other, &QCheckBox::clicked, &dialog(),
                     &ConnectivityObjectUI::computeGraphFeature);
    QObject::connect(&other, &QCheckBox::clicked, &dialog(),
                     &ConnectivityObjectUI::inspectGraphFeature);
    other.setProperty("measure", "degree");
    other.click();
    QPushButton ofNoMeasure;
    QObject::connect(&ofNoMeasure, &QPushButton::clicked, &dialog(),
                     &ConnectivityObjectUI::computeGraphFeature);
    ofNoMeasure.click();
    for (const Row &measure : measures(true))
        EXPECT_FALSE(result(measure.key).isValid()) << measure.key;
    EXPECT_TRUE(windows<LinePlot>().isEmpty());
}

TEST_F(GraphFeatures, TheFilteredMatricesAreNotUsed)
{
    object->computeMinimumSpanningTrees();
    find<QWidget>("ckBox_UseFilteredMatrix")->setEnabled(true);
    click("ckBox_UseFilteredMatrix");
    compute("strength");
    EXPECT_EQ(values("strength"), FeatureValues{listOf(nodalis::strength(weights(6, 0)))});
}

// The global efficiency

TEST_F(GraphFeatures, GlobalEfficiencyWithoutAProtocolIsANumberInTheTable)
{
    const int row = rowOf("global_efficiency");
    EXPECT_EQ(shownText(row, 4), "");
    compute("global_efficiency");
    const float expected = nodalis::global_efficiency(weights(6, 0));
    const QVariant shown = featuresModel().index(row, 4).data();
    EXPECT_EQ(shown.userType(), int(QMetaType::Float));
    EXPECT_EQ(shown.toFloat(), expected);
    EXPECT_EQ(inspectButton("global_efficiency"), nullptr);
}

TEST_F(GraphFeatures, GlobalEfficiencyOfSeveralIntervalsRepeatsThatOfTheFirst)
{
    setIntervals({{1, "rest"}, {11, "task"}, {21, "rest"}});
    compute("global_efficiency");
    const float first = nodalis::global_efficiency(object->matrices()[0]);
    EXPECT_NE(first, nodalis::global_efficiency(object->matrices()[1]));
    EXPECT_EQ(values("global_efficiency"), FeatureValues({{first, first, first}}));
    EXPECT_EQ(shownText(rowOf("global_efficiency"), 4), "");

    inspect("global_efficiency");
    auto *const plot = window<TimeseriesLinePlot>();
    ASSERT_NE(plot, nullptr);
    EXPECT_TRUE(plot->isVisible());
    EXPECT_EQ(plot->windowTitle(), "Plot: Global Efficiency");
    EXPECT_EQ(chartOf(*plot)->title(), "<b>Global Efficiency</b>");
    ASSERT_EQ(linesOf(*plot).size(), 1);
    EXPECT_EQ(linesOf(*plot)[0]->name(), "");
    EXPECT_EQ(heightsOf(linesOf(*plot)[0]), std::vector<float>(3, first));
    const QString again = QStringLiteral("rest") + QChar(0x200b); // keeps a place of its own
    EXPECT_EQ(categoriesOf(*plot), QStringList({"rest", "task", again}));
    EXPECT_TRUE(windows<LinePlot>().isEmpty());
}

TEST_F(GraphFeatures, ToolTipsOfDescriptionsWrap)
{
    showPage(features());
    for (const Row &measure : measures(false)) {
        const QModelIndex cell =
            featuresModel().index(rowOf(measure.key), GraphFeaturesModel::DescriptionColumn);
        features()->scrollTo(cell);
        const QPoint place = features()->visualRect(cell).center();
        QHelpEvent hover(QEvent::ToolTip, place, features()->viewport()->mapToGlobal(place));
        QApplication::sendEvent(features()->viewport(), &hover);
        EXPECT_EQ(asRead(QToolTip::text()), QString::fromUtf8(measure.description));
        const auto windows = QApplication::topLevelWidgets();
        const auto tip = std::find_if(windows.begin(), windows.end(), [](const QWidget *window) {
            return window->inherits("QTipLabel") && window->isVisible();
        });
        ASSERT_NE(tip, windows.end()) << measure.key;
        EXPECT_LT((*tip)->width(), 400) << measure.key;
        QToolTip::hideText();
        EXPECT_TRUE(QTest::qWaitFor([] { return !QToolTip::isVisible(); }));
    }
}

TEST_F(GraphFeatures, OtherHelpOfATableIsThatOfQt)
{
    showPage(features());
    const int degree = rowOf("degree");
    const int bare = featuresModel().addFeature("Nodal Features", "Bare", "", "bare", false);
    const auto help = [this](QEvent::Type type, int row) {
        const QModelIndex cell = featuresModel().index(row, GraphFeaturesModel::DescriptionColumn);
        features()->scrollTo(cell);
        const QPoint place = features()->visualRect(cell).center();
        QHelpEvent event(type, place, features()->viewport()->mapToGlobal(place));
        QApplication::sendEvent(features()->viewport(), &event);
    };
    const auto isOpen = [](const char *className) {
        const auto windows = QApplication::topLevelWidgets();
        return std::any_of(windows.begin(), windows.end(), [className](const QWidget *window) {
            return window->inherits(className) && window->isVisible();
        });
    };
    help(QEvent::ToolTip, degree);
    EXPECT_TRUE(isOpen("QTipLabel"));
    // A measure without a description takes the tip of another away.
    help(QEvent::ToolTip, bare);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !isOpen("QTipLabel"); }));

    help(QEvent::WhatsThis, degree);
    EXPECT_TRUE(isOpen("QWhatsThat"));
    QWhatsThis::hideText();
}

TEST_F(GraphFeatures, PlotOverManyConditionsIsWideEnoughForTheirNames)
{
    QVector<Interval> intervals;
    QStringList names;
    for (int slice = 0; slice < 20; ++slice) {
        names += QStringLiteral("Faces %1").arg(slice);
        intervals.append({1 + 10 * slice, names.last()});
    }
    setIntervals(intervals);
    compute("global_efficiency");
    inspect("global_efficiency");
    auto *const plot = window<TimeseriesLinePlot>();
    ASSERT_NE(plot, nullptr);
    ASSERT_TRUE(QTest::qWaitForWindowExposed(plot));
    QCoreApplication::processEvents();
    EXPECT_EQ(shownNames(*chartOf(*plot)), names);
}

TEST_F(GraphFeatures, GlobalEfficiencyOfOneIntervalIsShownNowhere)
{
    setIntervals({{1, "rest"}});
    compute("global_efficiency");
    EXPECT_EQ(result("global_efficiency").userType(), int(QMetaType::Float));
    EXPECT_EQ(result("global_efficiency"), nodalis::global_efficiency(object->matrices()[0]));
    EXPECT_EQ(shownText(rowOf("global_efficiency"), 4), "");
    EXPECT_FALSE(inspectButton("global_efficiency")->isEnabled());
}

TEST_F(GraphFeatures, InspectingAResultThatIsNoListPlotsNothing)
{
    setIntervals({{1, "rest"}});
    compute("global_efficiency");
    emit inspectButton("global_efficiency")->clicked(false); // no user can
    auto *const timeline = window<TimeseriesLinePlot>();
    ASSERT_NE(timeline, nullptr);
    EXPECT_EQ(heightsOf(linesOf(*timeline).value(0)), std::vector<float>());

    emit inspectButton("degree")->clicked(false); // nothing is computed yet
    auto *const plot = window<LinePlot>();
    ASSERT_NE(plot, nullptr);
    EXPECT_TRUE(linesOf(*plot).isEmpty());
}

// Plots per node

TEST_F(GraphFeatures, WithoutAProtocolThereIsOneSeries)
{
    setNamedNodes(4);
    compute("strength");
    inspect("strength");
    auto *const plot = window<LinePlot>();
    EXPECT_EQ(namesOf(linesOf(*plot)), QStringList({"Series 0"}));
    EXPECT_EQ(categoriesOf(*plot), QStringList({"V0", "V1", "V2", "V3"}));
    EXPECT_EQ(chartOf(*plot)->axes(Qt::Vertical).value(0)->titleText(), "Plot: Strength");
    for (const char *const name : {"cbox_Conditions", "btn_Show", "btn_Hide"})
        EXPECT_FALSE(plot->findChild<QWidget *>(name)->isEnabled()) << name;
    EXPECT_EQ(plot->findChild<QComboBox *>("cbox_Conditions")->count(), 0);
}

TEST_F(GraphFeatures, AProtocolThatIsNotInUsePlaysNoPart)
{
    setIntervals({{1, "cue", 1}, {11, "task"}});
    subject->setUseProtocol(false);
    setMatrices({weights(6, 1)});
    compute("degree");
    inspect("degree");
    const QList<QLineSeries *> lines = linesOf(*window<LinePlot>());
    EXPECT_EQ(namesOf(lines), QStringList({"Series 0"}));
    EXPECT_TRUE(lines.value(0)->isVisible()) << "no trigger";
    EXPECT_FALSE(window<LinePlot>()->findChild<QWidget *>("cbox_Conditions")->isEnabled());
    EXPECT_EQ(inspectButton("global_efficiency"), nullptr);
}

TEST_F(GraphFeatures, WithAProtocolConditionsAndTriggersAreToldApart)
{
    setIntervals({{1, "rest"}, {11, "cue", 1}, {21, "task"}, {31, "rest"}});
    compute("degree");
    inspect("degree");
    auto *const plot = window<LinePlot>();
    const QList<QLineSeries *> lines = linesOf(*plot);
    ASSERT_EQ(namesOf(lines), QStringList({"rest", "cue", "task", "rest"}));
    for (int i = 0; i < lines.size(); ++i)
        EXPECT_EQ(lines[i]->isVisible(), i != 1) << i;
    const auto *const conditions = plot->findChild<QComboBox *>("cbox_Conditions");
    EXPECT_TRUE(conditions->isEnabled());
    ASSERT_EQ(conditions->count(), 4);
    EXPECT_EQ(conditions->itemText(0), "All");
    QStringList legend;
    for (const QLabel *const label : plot->findChildren<QLabel *>())
        legend += label->text();
    EXPECT_TRUE(legend.contains("Trigger: cue"));
    EXPECT_FALSE(legend.contains("Trigger: rest"));
}

TEST_F(GraphFeatures, EachPressOpensAnotherPlot)
{
    compute("degree");
    inspect("degree");
    inspect("degree");
    ASSERT_EQ(windows<LinePlot>().size(), 2);
    QPointer<LinePlot> first = windows<LinePlot>()[0];
    first->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_FALSE(first.isNull()) << "a closed plot stays with its dialog";
    closeDialog();
    EXPECT_TRUE(first.isNull());
}

TEST_F(GraphFeatures, APlotKeepsTheValuesOfItsMoment)
{
    compute("strength");
    inspect("strength");
    setMatrices({weights(6, 9)});
    compute("strength");
    inspect("strength");
    const auto plots = windows<LinePlot>();
    ASSERT_EQ(plots.size(), 2);
    EXPECT_EQ(heightsOf(linesOf(*plots[0])[0]), listOf(nodalis::strength(weights(6, 0))));
    EXPECT_EQ(heightsOf(linesOf(*plots[1])[0]), listOf(nodalis::strength(weights(6, 9))));
}

TEST_F(GraphFeatures, WithoutNamesTheNodesAreNumberedAsVoxels)
{
    subject->setScheme({});
    subject->voiNames.clear();
    compute("strength");
    inspect("strength");
    const auto *const axis =
        qobject_cast<QValueAxis *>(chartOf(*window<LinePlot>())->axes(Qt::Horizontal).value(0));
    ASSERT_NE(axis, nullptr);
    EXPECT_EQ(axis->titleText(), "Voxels");
    EXPECT_EQ(axis->tickCount(), 6);
}

// A record that changed after its compute

TEST_F(GraphFeatures, FewerNamesThanNodesLeaveNumbers)
{
    ConnectivityScheme scheme;
    scheme.seedVois = {3, 1};
    subject->setScheme(scheme);
    compute("strength");
    inspect("strength");
    EXPECT_EQ(categoriesOf(*window<LinePlot>()), QStringList({"V3", "V1", "2", "3", "4", "5"}));
}

TEST_F(GraphFeatures, MoreNamesThanNodesAreLeftOut)
{
    setNodes(9);
    compute("strength");
    inspect("strength");
    EXPECT_EQ(categoriesOf(*window<LinePlot>()).size(), 6);
}

TEST_F(GraphFeatures, AProtocolThatIsGoneLeavesNumbers)
{
    setIntervals({{1, "rest"}, {11, "task"}});
    dialog();
    subject->setProtocol({});
    compute("degree");
    inspect("degree");
    EXPECT_EQ(namesOf(linesOf(*window<LinePlot>())), QStringList({"0", "1"}));
    compute("global_efficiency");
    inspect("global_efficiency");
    EXPECT_EQ(linesOf(*window<TimeseriesLinePlot>())[0]->count(), 2);
}

TEST_F(GraphFeatures, SeveralMatricesWithoutTheProtocolInUse)
{
    setMatrices({weights(6, 1), weights(6, 2)});
    compute("global_efficiency"); // a list, for which the row has no button
    EXPECT_EQ(values("global_efficiency").size(), 1u);
    compute("degree");
    inspect("degree");
    EXPECT_EQ(namesOf(linesOf(*window<LinePlot>())), QStringList({"Series 0", "Series 1"}));
}

TEST_F(GraphFeatures, TheTableKeepsItsButtonsWhenTheProtocolIsPutToUseLater)
{
    dialog();
    subject->setUseProtocol(true);
    compute("global_efficiency");
    EXPECT_EQ(featuresModel().index(rowOf("global_efficiency"), 4).data(),
              nodalis::global_efficiency(weights(6, 0)));
    EXPECT_EQ(inspectButton("global_efficiency"), nullptr);
}

// Real brains

/// Two graphs of the same regions.
struct Recording {
    const char *name;
    const char *another;
};

class RealBrain : public GraphFeatures, public testing::WithParamInterface<Recording>
{
protected:
    void SetUp() override
    {
        if (reference_data::names_with(".matrix.csv").empty())
            GTEST_SKIP() << "no graphs in " << reference_data::folder();
        matrix = reference_data::matrix(std::string(GetParam().name) + ".matrix.csv");
        another = reference_data::matrix(std::string(GetParam().another) + ".matrix.csv");
        ASSERT_GT(matrix.rows(), 20);
        ASSERT_EQ(matrix.rows(), another.rows());
        ASSERT_NE(matrix, another);
        setNamedNodes(int(matrix.rows()));
    }
    void computeAll()
    {
        for (const Row &measure : measures(false)) {
            if (measure.asks && matrix.rows() > 50)
                answer(QMessageBox::Yes);
            compute(measure.key);
        }
    }

    Eigen::MatrixXf matrix;
    Eigen::MatrixXf another;
};

TEST_P(RealBrain, NumbersAreThoseOfTheLibrary)
{
    setMatrices({matrix});
    computeAll();
    EXPECT_EQ(featuresModel().index(rowOf("global_efficiency"), 4).data(),
              nodalis::global_efficiency(matrix));
    for (const Row &measure : measures(true)) {
        SCOPED_TRACE(measure.key);
        const std::vector<float> expected = listOf(measure.perNode(matrix));
        EXPECT_EQ(values(measure.key), FeatureValues{expected});
        inspect(measure.key);
        LinePlot *const plot = windows<LinePlot>().last();
        EXPECT_EQ(heightsOf(linesOf(*plot).value(0)), expected);
        EXPECT_EQ(categoriesOf(*plot), subject->voiNames);
    }
}

TEST_P(RealBrain, NumbersOfEverySliceAreThoseOfTheLibrary)
{
    setIntervals({{1, "rest"}, {11, "task"}, {21, "rest"}});
    const std::vector<Eigen::MatrixXf> slices = {matrix, another, matrix};
    setMatrices(slices);
    computeAll();
    const float first = nodalis::global_efficiency(matrix);
    EXPECT_EQ(values("global_efficiency"), FeatureValues({{first, first, first}}));
    inspect("global_efficiency");
    EXPECT_EQ(heightsOf(linesOf(*window<TimeseriesLinePlot>()).value(0)),
              std::vector<float>(3, first));
    for (const Row &measure : measures(true)) {
        SCOPED_TRACE(measure.key);
        const FeatureValues expected = expectedValues(measure, slices);
        EXPECT_EQ(values(measure.key), expected);
        inspect(measure.key);
        const QList<QLineSeries *> lines = linesOf(*windows<LinePlot>().last());
        ASSERT_EQ(namesOf(lines), QStringList({"rest", "task", "rest"}));
        for (int slice = 0; slice < 3; ++slice)
            EXPECT_EQ(heightsOf(lines[slice]), expected[std::size_t(slice)]) << slice;
    }
}

INSTANTIATE_TEST_SUITE_P(Recordings, RealBrain,
                         testing::Values(Recording{"real_nitime28_abs", "real_nitime28_pos"},
                                         Recording{"real_gw94_abs", "real_gw94_SC_norm"}),
                         [](const auto &brain) { return std::string(brain.param.name); });

} // namespace
