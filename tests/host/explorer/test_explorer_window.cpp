// SPDX-License-Identifier: GPL-3.0-or-later
// The connectome window: one selection through all views, keys, the threshold bar, groups.
#include "host/explorer/explorer_window.h"
#include "host/explorer/network_tables.h"
#include "tests/gui_test.h"
#include "tests/host/explorer/result_folder.h"
#include "tests/support/modal_driver.h"
#include "tests/support/no_further_thread.h"

#include <QAbstractItemModelTester>
#include <QAccessible>
#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QDockWidget>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSettings>
#include <QSignalSpy>
#include <QSlider>
#include <QTest>
#include <QWheelEvent>
#include <gmock/gmock.h>

namespace corvane
{
namespace
{

using testing::HasSubstr;

class ExplorerWindowTest : public testing::Test
{
protected:
    void open(const QString &path)
    {
        QSettings().clear();
        ResultRequest request;
        request.path = path;
        m_window = std::make_unique<ExplorerWindow>(request);
        m_window->resize(1300, 850);
        m_window->show();
        waitUntilDone();
    }
    void waitUntilDone()
    {
        while (model().isBusy())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        QCoreApplication::processEvents();
    }
    ExplorerModel &model() { return m_window->model(); }
    /// Small screens have it in a tab.
    void raise(const char *dock)
    {
        child<QDockWidget>(dock)->raise();
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
    }
    template <typename Widget>
    Widget *child(const char *name)
    {
        auto *const found = m_window->findChild<Widget *>(QLatin1String(name));
        EXPECT_NE(found, nullptr) << name;
        return found;
    }
    /// The button that clears the search fades for 160 ms, and Qt frees that only at its end.
    static void letTheClearButtonFade() { QTest::qWait(250); }
    QString drawn() { return child<QLabel>("drawnLabel")->text(); }
    QString selected() { return child<QLabel>("selectedLabel")->text(); }
    void choose(const char *box, int index) { child<QComboBox>(box)->setCurrentIndex(index); }

    ExampleResult m_files;
    std::unique_ptr<ExplorerWindow> m_window;
};

TEST_F(ExplorerWindowTest, AClickInTheMatrixSelectsAnEdgeInAllViews)
{
    open(m_files.path());
    auto *const matrix = child<MatrixCanvas>("matrixCanvas");
    QTest::mouseClick(matrix, Qt::LeftButton, {}, matrix->cellOf(3, 8).center().toPoint());
    EXPECT_EQ(model().node(), 3);
    EXPECT_EQ(model().other(), 8);
    EXPECT_EQ(selected(),
              QStringLiteral("Region 3 - Region 8: %1").arg(exampleValue(3, 8), 0, 'f', 3));
    EXPECT_THAT(matrix->accessibleDescription().toStdString(),
                HasSubstr("selected: Region 3 - Region 8"));
    auto *const table = child<CopiedTable>("nodeTable");
    QStringList names;
    for (const QModelIndex &row : table->selectionModel()->selectedRows())
        names += row.data().toString();
    names.sort();
    EXPECT_EQ(names, QStringList({QStringLiteral("Region 3"), QStringLiteral("Region 8")}));
}

TEST_F(ExplorerWindowTest, AClickInRingAndBrainSelectsANode)
{
    open(m_files.path());
    auto *const ring = child<RingCanvas>("ringCanvas");
    QTest::mouseClick(ring, Qt::LeftButton, {}, ring->placeOf(5).toPoint());
    EXPECT_EQ(model().node(), 5);
    EXPECT_EQ(model().other(), -1);
    raise("brainDock");
    auto *const brain = child<BrainCanvas>("brainCanvas");
    QTest::mouseClick(brain, Qt::LeftButton, {}, brain->placeOf(0, 9).toPoint());
    EXPECT_EQ(model().node(), 9);
    QTest::mouseClick(brain, Qt::LeftButton, {}, QPoint(2, 2));
    EXPECT_EQ(model().node(), -1);
}

TEST_F(ExplorerWindowTest, ARowOfTheTableSelectsItsNodeAndAnEdgeItsPair)
{
    open(m_files.path());
    child<CopiedTable>("nodeTable")->selectRow(4);
    EXPECT_EQ(model().node(), 4);
    auto *const edges = child<CopiedTable>("edgeTable");
    edges->selectRow(0);
    const NetworkEdge &strongest = model().drawn().edges.front();
    EXPECT_EQ(model().node(), strongest.from);
    EXPECT_EQ(model().other(), strongest.to);
}

TEST_F(ExplorerWindowTest, ThresholdSaysWhatIsDrawnAndMeasuresFollow)
{
    open(m_files.path());
    child<QDoubleSpinBox>("thresholdBox")->setValue(20);
    waitUntilDone();
    EXPECT_EQ(drawn(), QStringLiteral("strongest 20 % of 66 edges, 13"));
    EXPECT_EQ(child<CopiedTable>("edgeTable")->model()->rowCount(), 13);
    const int degree = model().measures().columns.indexOf(QStringLiteral("degree"));
    EXPECT_DOUBLE_EQ(model().measures().nodes.col(degree).sum(), 26);
    choose("kindBox", 1); // weight
    waitUntilDone();
    EXPECT_EQ(model().drawn().edges.size(), 13U) << "what is drawn stays";
    choose("signsBox", 2); // negative
    waitUntilDone();
    for (const NetworkEdge &edge : model().drawn().edges)
        EXPECT_LT(edge.value, 0);
    EXPECT_THAT(drawn().toStdString(), HasSubstr("negative ones only"));
}

TEST_F(ExplorerWindowTest, ALaterStepEndsAnEarlierOne)
{
    open(m_files.path());
    QSignalSpy measures(&model(), &ExplorerModel::measuresChanged);
    for (int percent = 1; percent <= 60; ++percent)
        model().setThreshold({ThresholdKind::Density, percent / 100.0});
    waitUntilDone();
    EXPECT_EQ(model().drawn().text, QStringLiteral("strongest 60 % of 66 edges, 40"));
    EXPECT_EQ(measures.size(), 1);
}

TEST_F(ExplorerWindowTest, WithoutAFurtherThreadShowsTheSame)
{
    open(m_files.path());
    child<QDoubleSpinBox>("thresholdBox")->setValue(20);
    waitUntilDone();
    const Eigen::MatrixXd measures = model().measures().nodes;
    const NoFurtherThread refused;
    open(m_files.path());
    EXPECT_NE(drawn(), QStringLiteral("strongest 20 % of 66 edges, 13"));
    child<QDoubleSpinBox>("thresholdBox")->setValue(20);
    waitUntilDone();
    EXPECT_EQ(drawn(), QStringLiteral("strongest 20 % of 66 edges, 13"));
    EXPECT_EQ(model().measures().nodes, measures);
}

TEST_F(ExplorerWindowTest, SliderGoesThroughMatricesAndDifferences)
{
    open(m_files.path());
    child<QSlider>("matrixSlider")->setValue(1);
    waitUntilDone();
    EXPECT_EQ(model().shown().matrix->name, QStringLiteral("Pearson correlation, condition faces"));
    EXPECT_NEAR(model().shown().values(0, 1), -exampleValue(0, 1) / 2, 1e-12);
    choose("minusBox", 1); // minus the whole run
    waitUntilDone();
    EXPECT_NEAR(model().shown().values(0, 1), -1.5 * exampleValue(0, 1), 1e-12);
    const double limit = model().shown().limit;
    child<QSlider>("matrixSlider")->setValue(0);
    waitUntilDone();
    EXPECT_EQ(model().shown().values(0, 1), 0);
    EXPECT_EQ(model().shown().limit, limit);
}

TEST_F(ExplorerWindowTest, TheSelectedValueIsThatOfTheMatrixThatIsShown)
{
    open(m_files.path());
    model().select(0, 1);
    child<QSlider>("matrixSlider")->setValue(1);
    waitUntilDone();
    const QString value =
        QStringLiteral("Region 0 - Region 1: %1").arg(-exampleValue(0, 1) / 2, 0, 'f', 3);
    EXPECT_EQ(selected(), value);
    const auto *const matrix = child<MatrixCanvas>("matrixCanvas");
    EXPECT_EQ(matrix->accessibleDescription(),
              QStringLiteral("strongest 5 % of 66 edges, 3; selected: ") + value);
    child<QDoubleSpinBox>("thresholdBox")->setValue(20);
    waitUntilDone();
    EXPECT_EQ(matrix->accessibleDescription(),
              QStringLiteral("strongest 20 % of 66 edges, 13; selected: ") + value);
}

TEST_F(ExplorerWindowTest, AMatrixWithoutValuesHasNoMeasures)
{
    QByteArray empty = matrixText(ExampleResult::nodes, [](int, int) { return 0; });
    empty.replace("\t0", "\tn/a").replace("\t1", "\tn/a");
    const QString stem =
        m_files.path("sub-01_task-rest_atlas-Twelve_cond-none_stat-pearsoncorrelation_relmat");
    putBytes(stem + QStringLiteral(".tsv"), empty);
    putBytes(stem + QStringLiteral(".json"),
             R"({"RelationshipMeasure": "Pearson correlation", "Part": {"Condition": "none",
                 "Intervals": [], "Volumes": [], "DegreesOfFreedom": 0}})");
    open(m_files.path());
    const auto &matrices = model().result().matrices;
    const auto none = std::find_if(matrices.begin(), matrices.end(), [](const ResultMatrix &m) {
        return m.values.array().isNaN().all();
    });
    ASSERT_NE(none, matrices.end());
    choose("matrixBox", int(none - matrices.begin()));
    waitUntilDone();
    EXPECT_EQ(drawn(), QStringLiteral("no edges, since this matrix has no values"));
    EXPECT_EQ(child<QLabel>("measureLabel")->text(),
              QStringLiteral("global efficiency n/a, mean clustering n/a"));
}

TEST_F(ExplorerWindowTest, TheSearchIsWalkedThroughByKeys)
{
    open(m_files.path());
    m_window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(m_window.get()));
    QTest::keyClick(m_window.get(), Qt::Key_F, Qt::ControlModifier);
    auto *const search = child<QLineEdit>("searchEdit");
    QTest::keyClicks(search, QStringLiteral("region 1")); // 1, 10 and 11
    EXPECT_EQ(model().node(), 1);
    for (const int node : {10, 11, 1}) {
        QTest::keyClick(search, Qt::Key_Return);
        EXPECT_EQ(model().node(), node);
    }
    QTest::keyClick(search, Qt::Key_Down);
    EXPECT_TRUE(child<CopiedTable>("nodeTable")->hasFocus());
    search->setFocus();
    QTest::keyClick(search, Qt::Key_Escape);
    EXPECT_EQ(search->text(), QString());
    EXPECT_EQ(model().node(), -1);
    EXPECT_EQ(child<CopiedTable>("nodeTable")->model()->rowCount(), 12);
    letTheClearButtonFade();
}

TEST_F(ExplorerWindowTest, ControlAndFFindsANode)
{
    open(m_files.path());
    m_window->activateWindow();
    QTest::keyClick(m_window.get(), Qt::Key_F, Qt::ControlModifier);
    auto *const search = child<QLineEdit>("searchEdit");
    EXPECT_TRUE(search->hasFocus());
    QTest::keyClicks(search, QStringLiteral("region 7"));
    EXPECT_EQ(model().node(), 7);
    EXPECT_EQ(child<CopiedTable>("nodeTable")->model()->rowCount(), 1);
    letTheClearButtonFade();
}

TEST_F(ExplorerWindowTest, ArrowsMoveTheSelectionAndEscapeClearsIt)
{
    open(m_files.path());
    choose("orderBox", 3); // of the file
    waitUntilDone();
    auto *const matrix = child<MatrixCanvas>("matrixCanvas");
    matrix->setFocus();
    QTest::keyClick(matrix, Qt::Key_Right);
    EXPECT_EQ(model().node(), 0);
    EXPECT_EQ(model().other(), 1);
    QTest::keyClick(matrix, Qt::Key_Right);
    EXPECT_EQ(model().other(), 2);
    QTest::keyClick(matrix, Qt::Key_Down);
    EXPECT_EQ(model().node(), 1);
    QTest::keyClick(matrix, Qt::Key_Down); // over the diagonal
    EXPECT_EQ(model().node(), 3);
    QTest::keyClick(matrix, Qt::Key_Escape);
    EXPECT_EQ(model().node(), -1);
    for (const char *const name : {"ringCanvas", "brainCanvas"}) {
        auto *const canvas = child<NetworkCanvas>(name);
        QTest::keyClick(canvas, Qt::Key_Right);
        EXPECT_EQ(model().node(), 0) << name;
        QTest::keyClick(canvas, Qt::Key_Right);
        EXPECT_EQ(model().node(), 1) << name;
        QTest::keyClick(canvas, Qt::Key_Left);
        EXPECT_EQ(model().node(), 0) << name;
        QTest::keyClick(canvas, Qt::Key_Escape);
        EXPECT_EQ(model().node(), -1) << name;
    }
}

TEST_F(ExplorerWindowTest, DownGoesThroughTheEdgesOfANodeTheStrongestFirst)
{
    open(m_files.path());
    child<QDoubleSpinBox>("thresholdBox")->setValue(100);
    waitUntilDone();
    model().select(6);
    std::vector<std::pair<double, int>> others;
    for (int node = 0; node < ExampleResult::nodes; ++node)
        if (node != 6)
            others.emplace_back(-std::abs(exampleValue(6, node)), node);
    std::sort(others.begin(), others.end());
    auto *const ring = child<RingCanvas>("ringCanvas");
    for (const auto &[strength, node] : others) {
        QTest::keyClick(ring, Qt::Key_Down);
        EXPECT_EQ(model().other(), node);
    }
}

TEST_F(ExplorerWindowTest, UpGoesThroughThemBackwards)
{
    open(m_files.path());
    child<QDoubleSpinBox>("thresholdBox")->setValue(100);
    waitUntilDone();
    model().select(6);
    int weakest = 0;
    int strongest = 0;
    for (int node = 1; node < ExampleResult::nodes; ++node) {
        if (node == 6)
            continue;
        if (std::abs(exampleValue(6, node)) < std::abs(exampleValue(6, weakest)))
            weakest = node;
        if (std::abs(exampleValue(6, node)) > std::abs(exampleValue(6, strongest)))
            strongest = node;
    }
    auto *const ring = child<RingCanvas>("ringCanvas");
    QTest::keyClick(ring, Qt::Key_Up);
    EXPECT_EQ(model().other(), weakest);
    QTest::keyClick(ring, Qt::Key_Down);
    EXPECT_EQ(model().other(), strongest);
}

TEST_F(ExplorerWindowTest, ShiftAndAClickSelectTheOtherNodeOfAnEdge)
{
    open(m_files.path());
    auto *const ring = child<RingCanvas>("ringCanvas");
    QTest::mouseClick(ring, Qt::LeftButton, Qt::ShiftModifier, ring->placeOf(5).toPoint());
    EXPECT_EQ(model().node(), 5);
    EXPECT_EQ(model().other(), -1);
    QTest::mouseClick(ring, Qt::LeftButton, Qt::ShiftModifier, ring->placeOf(9).toPoint());
    EXPECT_EQ(model().node(), 5);
    EXPECT_EQ(model().other(), 9);
    QTest::mouseClick(ring, Qt::LeftButton, {}, ring->placeOf(2).toPoint());
    EXPECT_EQ(model().node(), 2);
    EXPECT_EQ(model().other(), -1);
}

TEST_F(ExplorerWindowTest, KeysZoomAndADoubleClickShowsAll)
{
    open(m_files.path());
    auto *const ring = child<RingCanvas>("ringCanvas");
    const auto apart = [&] {
        QCoreApplication::processEvents();
        return QLineF(ring->placeOf(4), ring->placeOf(10)).length();
    };
    const double before = apart();
    QTest::keyClick(ring, Qt::Key_Plus);
    EXPECT_NEAR(apart(), 1.25 * before, 0.01);
    QTest::keyClick(ring, Qt::Key_Minus);
    EXPECT_NEAR(apart(), before, 0.01);
    QTest::keyClick(ring, Qt::Key_Equal);
    QTest::mouseDClick(ring, Qt::LeftButton, {}, QPoint(5, 5));
    EXPECT_NEAR(apart(), before, 0.01);
}

TEST_F(ExplorerWindowTest, ACopyIsTheWholePictureHoweverMuchIsSeen)
{
    open(m_files.path());
    auto *const ring = child<RingCanvas>("ringCanvas");
    const auto copied = [&] {
        QTest::keyClick(ring, Qt::Key_C, Qt::ControlModifier);
        return QApplication::clipboard()->image();
    };
    const QImage whole = copied();
    EXPECT_FALSE(whole.isNull());
    QTest::keyClick(ring, Qt::Key_Plus);
    QCoreApplication::processEvents();
    EXPECT_EQ(copied(), whole);
}

TEST_F(ExplorerWindowTest, TellsWhatIsUnderTheMouse)
{
    open(m_files.path()); // ordered by network, not as in the file
    QString text;
    const auto pointAt = [&](NetworkCanvas *canvas, const QPointF &place) {
        const auto connection = QObject::connect(canvas, &NetworkCanvas::pointedAt,
                                                 [&](const QString &told) { text = told; });
        QMouseEvent move(QEvent::MouseMove, place, Qt::NoButton, Qt::NoButton, {});
        QCoreApplication::sendEvent(canvas, &move);
        QObject::disconnect(connection);
    };
    auto *const matrix = child<MatrixCanvas>("matrixCanvas");
    pointAt(matrix, matrix->cellOf(4, 9).center());
    EXPECT_EQ(text, QStringLiteral("Region 4 - Region 9: %1").arg(exampleValue(4, 9), 0, 'f', 3));
    auto *const ring = child<RingCanvas>("ringCanvas");
    pointAt(ring, ring->placeOf(7));
    EXPECT_EQ(text, QStringLiteral("Region 7, B"));
    raise("brainDock");
    auto *const brain = child<BrainCanvas>("brainCanvas");
    pointAt(brain, brain->placeOf(0, 3));
    EXPECT_EQ(text, QStringLiteral("Region 3"));
}

TEST_F(ExplorerWindowTest, ColumnsAreSortedByNumbersAndCopiedAsTheyStand)
{
    open(m_files.path());
    auto *const edges = child<CopiedTable>("edgeTable");
    child<QDoubleSpinBox>("thresholdBox")->setValue(100);
    waitUntilDone();
    edges->sortByColumn(2, Qt::AscendingOrder);
    double before = -2;
    for (int row = 0; row < edges->model()->rowCount(); ++row) {
        const QModelIndex cell = edges->model()->index(row, 2);
        const double value = cell.data().toDouble();
        EXPECT_GE(value, before);
        before = value;
    }
    auto *const nodes = child<CopiedTable>("nodeTable");
    nodes->sortByColumn(0, Qt::DescendingOrder);
    nodes->selectRow(4);
    nodes->selectionModel()->select(nodes->model()->index(1, 0),
                                    QItemSelectionModel::Select | QItemSelectionModel::Rows);
    QTest::keyClick(nodes, Qt::Key_C, Qt::ControlModifier);
    const QStringList lines = QApplication::clipboard()->text().split(QLatin1Char('\n'));
    ASSERT_GE(lines.size(), 3);
    EXPECT_EQ(lines[1].section(QLatin1Char('\t'), 0, 0),
              nodes->model()->index(1, 0).data().toString());
    EXPECT_EQ(lines[2].section(QLatin1Char('\t'), 0, 0),
              nodes->model()->index(4, 0).data().toString());
}

TEST_F(ExplorerWindowTest, TheSliderIsFinerWhereNetworksAreSparse)
{
    open(m_files.path());
    auto *const slider = child<QSlider>("thresholdSlider");
    slider->setValue(500);
    EXPECT_DOUBLE_EQ(model().settings().threshold.value, 0.25);
    EXPECT_DOUBLE_EQ(child<QDoubleSpinBox>("thresholdBox")->value(), 25);
    child<QDoubleSpinBox>("thresholdBox")->setValue(36);
    EXPECT_EQ(slider->value(), 600);
}

TEST_F(ExplorerWindowTest, CopyAsCommandIsForTheViewWithTheKeyboard)
{
    open(m_files.path());
    m_window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(m_window.get()));
    for (const auto &[key, view] : {std::pair(Qt::Key_2, "ring"),
                                    {Qt::Key_4, "nodes"},
                                    {Qt::Key_1, "matrix"},
                                    {Qt::Key_5, "evidence"}}) {
        QTest::keyClick(m_window.get(), key, Qt::ControlModifier);
        QTest::keyClick(m_window.get(), Qt::Key_C, Qt::ControlModifier | Qt::ShiftModifier);
        EXPECT_THAT(QApplication::clipboard()->text().toStdString(),
                    HasSubstr(std::string(" --view ") + view + ' '));
    }
}

TEST_F(ExplorerWindowTest, AnotherRunIsChosenInTheBar)
{
    putBytes(m_files.path("sub-01_task-nback_atlas-Two_stat-pearsoncorrelation_relmat.tsv"),
             "Node\tx\ty\nx\t1\t-0.1\ny\t-0.1\t1\n");
    open(m_files.path());
    ASSERT_EQ(model().result().nodes.size(), 2U);
    EXPECT_TRUE(child<QComboBox>("runBox")->isVisible());
    choose("runBox", 1);
    waitUntilDone();
    EXPECT_EQ(model().result().nodes.size(), std::size_t(ExampleResult::nodes));
    EXPECT_EQ(model().request().run, model().result().runs[1]);
}

TEST_F(ExplorerWindowTest, EveryViewIsReachedByKeysAlone)
{
    open(m_files.path());
    m_window->activateWindow();
    const char *const views[] = {"matrixCanvas", "ringCanvas",     "brainCanvas",
                                 "nodeTable",    "evidenceCanvas", "measuresCanvas"};
    for (int n = 0; n < 6; ++n) {
        QTest::keyClick(m_window.get(), Qt::Key(Qt::Key_1 + n), Qt::ControlModifier);
        EXPECT_TRUE(child<QWidget>(views[n])->hasFocus()) << views[n];
        EXPECT_FALSE(child<QWidget>(views[n])->accessibleName().isEmpty()) << views[n];
        EXPECT_TRUE(m_window->focusWidget()->isVisible());
    }
    for (QWidget *const widget : m_window->findChildren<QWidget *>())
        if (widget->focusPolicy() & Qt::TabFocus && widget->isVisible() &&
            widget->objectName().startsWith(QLatin1String("qt_")) == false) {
            QAccessibleInterface *const reader = QAccessible::queryAccessibleInterface(widget);
            ASSERT_NE(reader, nullptr);
            EXPECT_FALSE(reader->text(QAccessible::Name).isEmpty() &&
                         reader->text(QAccessible::Description).isEmpty() &&
                         widget->inherits("QComboBox"))
                << widget->objectName().toStdString();
        }
}

TEST_F(ExplorerWindowTest, CopiesPicturesAndTables)
{
    open(m_files.path());
    QTest::keyClick(child<QWidget>("ringCanvas"), Qt::Key_C, Qt::ControlModifier);
    const QMimeData *const copied = QApplication::clipboard()->mimeData();
    EXPECT_TRUE(copied->hasImage());
    EXPECT_TRUE(copied->text().startsWith(QLatin1String("node_1\tnode_2\tvalue\n")));
    auto *const table = child<CopiedTable>("nodeTable");
    table->selectRow(2);
    QTest::keyClick(table, Qt::Key_C, Qt::ControlModifier);
    const QStringList lines = QApplication::clipboard()->text().split(QLatin1Char('\n'));
    EXPECT_TRUE(lines[0].startsWith(QLatin1String("Node\tNetwork\tSide\tCoverage\tClustering")));
    EXPECT_TRUE(lines[1].startsWith(QLatin1String("Region 2\tC\tLeft\t")));
}

TEST_F(ExplorerWindowTest, WheelZoomsAndDraggingPans)
{
    open(m_files.path());
    auto *const matrix = child<MatrixCanvas>("matrixCanvas");
    const double apart = QLineF(child<RingCanvas>("ringCanvas")->placeOf(4),
                                child<RingCanvas>("ringCanvas")->placeOf(10))
                             .length();
    const QPoint place = matrix->cellOf(3, 8).center().toPoint();
    const double before = matrix->cellOf(3, 8).width();
    const auto wheel = [](QWidget *widget, const QPoint &at, int angle) {
        QWheelEvent event(at, widget->mapToGlobal(at), {}, {0, angle}, Qt::NoButton, {},
                          Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(widget, &event);
        QCoreApplication::processEvents();
    };
    wheel(matrix, place, 480);
    EXPECT_GT(matrix->cellOf(3, 8).width(), 1.5 * before);
    const QRectF zoomed = matrix->cellOf(3, 8);
    const int side = int(zoomed.width());
    QTest::mousePress(matrix, Qt::LeftButton, {}, place);
    for (const int step : {side, 2 * side}) {
        QMouseEvent move(QEvent::MouseMove, place + QPoint(step, 0), Qt::NoButton, Qt::LeftButton,
                         {});
        QCoreApplication::sendEvent(matrix, &move);
    }
    QTest::mouseRelease(matrix, Qt::LeftButton, {}, place + QPoint(2 * side, 0));
    QCoreApplication::processEvents();
    EXPECT_GT(matrix->cellOf(3, 8).left(), zoomed.left());
    EXPECT_EQ(model().node(), -1) << "a drag selects nothing";
    QTest::keyClick(matrix, Qt::Key_Home);
    QCoreApplication::processEvents();
    EXPECT_NEAR(matrix->cellOf(3, 8).width(), before, 1e-9);

    auto *const ring = child<RingCanvas>("ringCanvas");
    const QPointF at = ring->placeOf(4);
    wheel(ring, at.toPoint(), 480);
    EXPECT_LT(QLineF(ring->placeOf(4), at).length(), 2) << "about the mouse";
    EXPECT_NEAR(QLineF(ring->placeOf(4), ring->placeOf(10)).length(), apart * std::pow(1.0015, 480),
                1);
}

TEST_F(ExplorerWindowTest, AloneShowsTheEdgesOfTheSelectedNode)
{
    open(m_files.path());
    child<QDoubleSpinBox>("thresholdBox")->setValue(100);
    waitUntilDone();
    model().select(3);
    child<QCheckBox>("aloneBox")->setChecked(true);
    const NetworkPicture picture = networkPicture(
        model().result(), model().shown(), model().drawn(), model().settings(), NetworkView::Ring);
    EXPECT_EQ(picture.edges->size(), 11U);
    EXPECT_THAT(picture.foot.toStdString(), HasSubstr("of these the 11 of Region 3 alone"));
    EXPECT_EQ(drawn(),
              QStringLiteral("strongest 100 % of 66 edges, 66; of these the 11 of Region 3 alone"));
    model().select(-1);
    EXPECT_EQ(drawn(), QStringLiteral("strongest 100 % of 66 edges, 66"));
}

TEST_F(ExplorerWindowTest, SelectionHasAPlaceForTheSlices)
{
    open(m_files.path());
    model().select(2);
    EXPECT_FALSE(child<QPushButton>("slicesButton")->isEnabled()) << "there are no slices";
    QSignalSpy places(m_window.get(), &ExplorerWindow::placeSelected);
    model().select(3);
    EXPECT_TRUE(child<QPushButton>("slicesButton")->isEnabled());
    ASSERT_EQ(places.size(), 1);
    EXPECT_NEAR(places[0][0].toDouble(), 0, 0.1); // 60 cos 90
    EXPECT_NEAR(places[0][1].toDouble(), 80, 0.1);
    EXPECT_NEAR(places[0][2].toDouble(), 12, 0.1);
    model().select(3, 4);
    child<QPushButton>("slicesButton")->click();
    EXPECT_EQ(model().node(), 4) << "the other node of the edge";
    EXPECT_NEAR(places.last()[2].toDouble(), 16, 0.1);
}

TEST_F(ExplorerWindowTest, ArrangementIsKept)
{
    open(m_files.path());
    child<QDockWidget>("brainDock")->hide();
    m_window->close();
    m_window.reset();
    ResultRequest request;
    request.path = m_files.path();
    m_window = std::make_unique<ExplorerWindow>(request);
    m_window->show();
    EXPECT_FALSE(child<QDockWidget>("brainDock")->isVisible());
    EXPECT_TRUE(child<QDockWidget>("ringDock")->isVisible());
    waitUntilDone();
}

TEST_F(ExplorerWindowTest, CurvesAreThereWhileTheyAreSeen)
{
    open(m_files.path());
    raise("measuresDock");
    waitUntilDone();
    EXPECT_EQ(model().curves().densities.size(), usualDensities().size());
    const auto *const steps = model().curves().steps.data();
    model().setThreshold({ThresholdKind::Density, 0.3});
    waitUntilDone();
    EXPECT_EQ(model().curves().steps.data(), steps) << "the same curves, not made again";
    const auto ofModel = [&] {
        const ViewSettings &settings = model().settings();
        const auto shown = shownMatrix(model().result(), settings);
        const MeasureCurves curves =
            measureCurves(shown->ranked, shown->isKnown, settings.threshold, usualDensities());
        const int strength = curves.steps[0].columns.indexOf(QStringLiteral("strength"));
        EXPECT_TRUE((curveOf(model().curves(), strength, 3) == curveOf(curves, strength, 3)).all());
        return curveOf(curves, strength, 3).sum();
    };
    const double whole = ofModel();
    model().setMatrix(model().result().matrices[1].name);
    waitUntilDone();
    EXPECT_NE(ofModel(), whole) << "those of the other matrix";
    model().setMatrix(model().result().matrices[0].name);
    waitUntilDone();
    EXPECT_EQ(ofModel(), whole);
    model().setThreshold({ThresholdKind::TreeAndDensity, 0.3});
    waitUntilDone();
    EXPECT_NE(ofModel(), whole) << "those with a tree";
    model().setThreshold({ThresholdKind::Density, 0.3, EdgeSigns::Negative});
    waitUntilDone();
    EXPECT_NE(ofModel(), whole) << "those of negative edges";
}

TEST_F(ExplorerWindowTest, TablesAreProperModels)
{
    open(m_files.path());
    NodeTableModel nodes(model());
    EdgeTableModel edges(model());
    const QAbstractItemModelTester nodeTester(
        &nodes, QAbstractItemModelTester::FailureReportingMode::Warning);
    const QAbstractItemModelTester edgeTester(
        &edges, QAbstractItemModelTester::FailureReportingMode::Warning);
    model().setThreshold({ThresholdKind::Density, 0.5});
    waitUntilDone();
    EXPECT_EQ(edges.rowCount(), 33);
    EXPECT_EQ(nodes.rowCount(), 12);
    EXPECT_EQ(nodes.columnCount(), 10);
}

TEST_F(ExplorerWindowTest, GroupHasNetworksAsLayersAndItsExclusions)
{
    const ExampleGroup group;
    open(group.path());
    EXPECT_EQ(model().shown().matrix->name, QStringLiteral("old: t"));
    model().setComponents({1});
    waitUntilDone();
    EXPECT_EQ(model().drawn().edges.size(), 2U);
    model().setComponents({1, 2});
    waitUntilDone();
    EXPECT_EQ(model().drawn().edges.size(), 3U);
    {
        ModalDriver networks;
        networks.expect<QDialog>([&](QDialog &dialog) {
            auto *const list = dialog.findChild<QListWidget *>();
            ASSERT_NE(list, nullptr);
            EXPECT_EQ(list->item(1)->checkState(), Qt::Checked);
            list->item(1)->setCheckState(Qt::Unchecked);
            dialog.reject();
        });
        child<QPushButton>("componentsButton")->click();
    }
    waitUntilDone();
    EXPECT_EQ(model().drawn().edges.size(), 2U);
    EXPECT_FALSE(child<QSlider>("thresholdSlider")->isEnabled()) << "networks take its place";
    EXPECT_EQ(child<QPushButton>("leftOutButton")->text(), QStringLiteral("&Left out (1)..."));
    EXPECT_TRUE(child<QPushButton>("componentsButton")->isVisible());
    QString leftOut;
    ModalDriver driver;
    driver.expect<QDialog>([&](QDialog &dialog) {
        leftOut = dialog.findChild<QPlainTextEdit *>()->toPlainText();
        dialog.reject();
    });
    child<QPushButton>("leftOutButton")->click();
    EXPECT_EQ(leftOut, QStringLiteral("sub-09 lacks Region 3"));
}

TEST_F(ExplorerWindowTest, FollowsADarkPalette)
{
    open(m_files.path());
    QPalette dark = m_window->palette();
    dark.setColor(QPalette::Base, QColor(30, 30, 30));
    dark.setColor(QPalette::Window, QColor(40, 40, 40));
    dark.setColor(QPalette::WindowText, Qt::white);
    m_window->setPalette(dark);
    QCoreApplication::processEvents();
    for (const char *const name : {"matrixCanvas", "ringCanvas", "brainCanvas", "evidenceCanvas"}) {
        const QImage image = child<QWidget>(name)->grab().toImage();
        EXPECT_LT(qGray(image.pixel(6, 6)), 60) << name;
    }
}

TEST_F(ExplorerWindowTest, NoMatrixPixelIsPaintedAgainForTheMouse)
{
    open(m_files.path());
    auto *const ring = child<RingCanvas>("ringCanvas");
    const QImage before = ring->grab().toImage();
    QMouseEvent move(QEvent::MouseMove, ring->placeOf(2), Qt::NoButton, Qt::NoButton, {});
    QCoreApplication::sendEvent(ring, &move);
    const QImage after = ring->grab().toImage();
    EXPECT_NE(after, before) << "the node under the mouse is marked";
    QEvent leave(QEvent::Leave);
    QCoreApplication::sendEvent(ring, &leave);
    EXPECT_EQ(ring->grab().toImage(), before);
}

} // namespace
} // namespace corvane
