// SPDX-License-Identifier: GPL-3.0-or-later
#include "plots/color_map.h"
#include "tests/gui_test.h"
#include "tests/plots/plot_fixture.h"

#include <QGraphicsLayout>
#include <QGraphicsScene>
#include <QMetaType>
#include <QPaintEvent>
#include <QSignalSpy>
#include <QTest>
#include <QVector2D>
#include <QtCharts/QAbstractAxis>
#include <QtCharts/QCategoryAxis>
#include <QtCharts/QLegend>
#include <QtCharts/QLegendMarker>

#include <nodalis/nodalis.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <tuple>

using namespace QtCharts;

namespace
{

constexpr float nan = std::numeric_limits<float>::quiet_NaN();
constexpr float infinity = std::numeric_limits<float>::infinity();
const QColor plainColor(0, 0, 0, 30);

std::vector<int> elements(const Eigen::MatrixXi &tree)
{
    return {tree.data(), tree.data() + tree.size()};
}

QVariant description(const std::vector<int> &tree = {})
{
    return QVariantHash{{QStringLiteral("slice"), 0},
                        {QStringLiteral("mst"), QVariant::fromValue(tree)}};
}

QVariant triggerDescription(const QString &name)
{
    return QVariantHash{{QStringLiteral("condition_str"), name}};
}

/// A matrix with these entries above the diagonal, row by row, and others below.
Eigen::MatrixXf upperTriangle(int n, const std::vector<float> &entries)
{
    Eigen::MatrixXf matrix = Eigen::MatrixXf::Constant(n, n, 0.77f);
    auto next = entries.begin();
    for (int i = 0; i < n; ++i) {
        for (int j = i + 1; j < n; ++j)
            matrix(i, j) = *next++;
    }
    return matrix;
}

/// volatile, or g++ 12 drops two such conversions side by side.
double single(double value)
{
    const volatile float narrow = float(value);
    return double(narrow);
}

/// The node positions by the formula, in the order of the ring.
QVector<QPointF> expectedNodes(int n)
{
    QVector<QPointF> nodes;
    const float step = (360.0f / float(n)) * 0.017453292f;
    float angle = 0.0f;
    for (int k = 0; k < n; ++k) {
        angle = angle + step;
        nodes.append(QPointF(single(std::cos(double(angle)) * 213.3333282470703 + 320.0),
                             single(std::sin(double(angle)) * 213.3333282470703 + 320.0)));
    }
    return nodes;
}

QPointF expectedMiddle(const QPointF &one, const QPointF &other)
{
    const double x = (one.x() + other.x()) / 2;
    const double y = (one.y() + other.y()) / 2;
    return {x + (320.0 - x) * 0.5, y + (330.0 - y) * 0.5};
}

void expectLabels(const CircularPlotWidget &ring, int n, const QStringList &names)
{
    const QVector<MyGraphicsSimpleTextItem *> labels = visibleLabelsOf(ring);
    ASSERT_EQ(labels.size(), n);
    const QVector<QPointF> nodes = expectedNodes(n);
    const float step = (360.0f / float(n)) * 0.017453292f;
    float angle = 0.0f;
    for (int k = 0; k < n; ++k) {
        angle += step;
        const int node = k == n - 1 ? n - 1 : k == 0 ? n - 2 : n - k - 2;
        const double degrees = double(angle) * 180.0 / 3.14156;
        // No node of a ring stands straight above or beside the centre of the chart.
        QVector2D direction(nodes[k]);
        direction -= QVector2D(330.0f, 330.0f);
        direction /= direction.length();
        const bool left = direction.x() < 0;
        const double scale = left ? 2.0 : 1.25;
        const double x = single(nodes[k].x() + double(direction.x() * 60.0f) * scale);
        const double y = single(nodes[k].y() + double(direction.y() * 60.0f) * scale);

        EXPECT_EQ(labels[k]->toPlainText(), names[node]) << k;
        EXPECT_EQ(labels[k]->property("index"), QVariant(node)) << k;
        EXPECT_EQ(labels[k]->font(), QFont(QStringLiteral("Arial"), 10)) << k;
        EXPECT_DOUBLE_EQ(labels[k]->rotation(), left ? degrees + 180.0 : degrees) << k;
        EXPECT_EQ(labels[k]->scale(), 1.0) << k;
        EXPECT_EQ(labels[k]->x(), x) << k;
        EXPECT_EQ(labels[k]->y(), y) << k;
    }
}

void expectNodes(const CircularPlotWidget &ring, int n)
{
    const QScatterSeries *const nodes = nodesOf(ring);
    ASSERT_NE(nodes, nullptr);
    EXPECT_EQ(nodes->pointsVector(), expectedNodes(n));
    EXPECT_EQ(nodes->color(), QColor(Qt::black));
    EXPECT_EQ(nodes->borderColor(), QColor(Qt::white));
    EXPECT_EQ(nodes->markerSize(), 10.0);
    // Drawn last, over the edges.
    EXPECT_EQ(chartOf(ring)->series().constLast(), nodes);
}

/// Checks each edge against the matrix, with the settings of a new widget.
void expectEdges(const CircularPlotWidget &ring, const Eigen::MatrixXf &matrix,
                 const Eigen::MatrixXi &tree)
{
    const int n = int(matrix.rows());
    const QVector<QPointF> nodes = expectedNodes(n);
    QHash<QPair<int, int>, const QSplineSeries *> edges;
    double last = -std::numeric_limits<double>::infinity();
    for (const QSplineSeries *edge : edgesOf(ring)) {
        edges.insert(
            {edge->property("emitting-to").toInt(), edge->property("emitting-from").toInt()}, edge);
        EXPECT_LE(last, edge->property("value").toReal()) << "order of drawing";
        last = edge->property("value").toReal();
    }
    int index = 0;
    for (int i = 0; i < n; ++i) {
        for (int j = i + 1; j < n; ++j) {
            if (matrix(i, j) == 0.0f)
                continue;
            SCOPED_TRACE(testing::Message() << "edge " << i << " to " << j);
            const QSplineSeries *const edge = edges.take({i, j});
            ASSERT_NE(edge, nullptr);
            const auto value = double(matrix(i, j));
            const bool inTree = tree.size() > 0 && tree(i, j) != 0;
            QPen pen(inTree ? QColor(Qt::red) : plainColor);
            pen.setWidth(int(5.0 * value));

            const QVector<QPointF> points = {nodes[j], expectedMiddle(nodes[j], nodes[i]),
                                             nodes[i]};
            EXPECT_EQ(edge->pointsVector(), points);
            EXPECT_EQ(edge->pen(), pen);
            EXPECT_TRUE(edge->isVisible());
            EXPECT_EQ(edge->property("value"), QVariant(value));
            EXPECT_EQ(edge->property("pen-width"), QVariant(5.0 * value));
            EXPECT_EQ(edge->property("cmap-color").value<QColor>(), valueToColor(value));
            EXPECT_EQ(edge->property("default-color").value<QColor>(), plainColor);
            EXPECT_EQ(edge->property("pen").value<QPen>(), pen);
            EXPECT_EQ(edge->property("original-pen").value<QPen>(), pen);
            EXPECT_EQ(edge->property("fadein-pen").value<QPen>(), pen);
            EXPECT_EQ(edge->property("index"), QVariant(index));
            EXPECT_EQ(edge->property("emitting-from"), QVariant(j));
            EXPECT_EQ(edge->property("emitting-to"), QVariant(i));
            EXPECT_EQ(edge->property("mst_sig"), inTree ? QVariant(true) : QVariant());
            EXPECT_EQ(edge->property("filtered-out"), QVariant());
            ++index;
        }
    }
    EXPECT_TRUE(edges.isEmpty()) << "edges that no entry asks for";
}

class RingOfRealMatrix : public testing::TestWithParam<int>
{
};

TEST_P(RingOfRealMatrix, is_drawn_by_the_formulas)
{
    SKIP_WITHOUT_REAL_MATRICES();
    const int n = GetParam();
    const Eigen::MatrixXf matrix = realMatrix(n);
    const auto [weights, tree] = nodalis::mst::minimum_spanning_tree(matrix, false, true);
    ASSERT_EQ(tree.sum(), 2 * (n - 1));

    CircularPlotWidget ring;
    ring.setLabels(nodeNames(n));
    ring.plotSlice(matrix, 0, description(elements(tree)));

    ASSERT_EQ(edgesOf(ring).size(), n * (n - 1) / 2);
    expectNodes(ring, n);
    expectLabels(ring, n, nodeNames(n));
    expectEdges(ring, matrix, tree);
}

INSTANTIATE_TEST_SUITE_P(Sizes, RingOfRealMatrix, testing::Values(1, 2, 3, 10, 116),
                         testing::PrintToStringParamName());

/// Whole weights of a graph with its spanning tree, the same each time.
struct Slice {
    explicit Slice(int n, unsigned seed)
    {
        std::mt19937 random(seed);
        std::uniform_real_distribution<float> weight(-0.2f, 1.0f);
        matrix = Eigen::MatrixXf::Zero(n, n);
        for (int i = 0; i < n; ++i) {
            for (int j = i + 1; j < n; ++j)
                matrix(i, j) = matrix(j, i) = weight(random);
        }
        tree = std::get<1>(nodalis::mst::minimum_spanning_tree(matrix, false, true));
    }

    Eigen::MatrixXf matrix;
    Eigen::MatrixXi tree;
};

/// A ring of the chart's own means alone: default axes that give all series their range and go.
/// Names are taken over from the ring under test, edges where `isShown` says so.
class PlainRing : public QGraphicsView
{
public:
    PlainRing(const CircularPlotWidget &ring, const Slice &slice)
        : QGraphicsView(new QGraphicsScene)
    {
        scene()->setParent(this);
        setRenderHint(QPainter::Antialiasing, true);
        setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        chart->legend()->hide();
        chart->layout()->setContentsMargins(0, 0, 0, 0);
        chart->setMargins(QMargins());
        chart->setBackgroundRoundness(0);
        scene()->addItem(chart);
        chart->layout()->setPreferredSize(660, 660);
        chart->resize(660, 660);
        copyNames(ring);
        addEdges(slice);
        addNodes(int(slice.matrix.rows()));
        leaveTheRangeOfDefaultAxes();
    }

    void showEdges(double above, double below)
    {
        for (QAbstractSeries *series : chart->series()) {
            const QVariant value = series->property("value");
            series->setVisible(!value.isValid() ||
                               (value.toDouble() > above && value.toDouble() < below));
        }
    }

private:
    void copyNames(const CircularPlotWidget &ring)
    {
        for (const MyGraphicsSimpleTextItem *label : visibleLabelsOf(ring)) {
            auto *const name = new QGraphicsTextItem(label->toPlainText(), chart);
            name->setDefaultTextColor(Qt::black);
            name->setFont(QFont(QStringLiteral("Arial"), 10));
            name->setRotation(label->rotation());
            name->setPos(label->pos());
        }
    }

    void addEdges(const Slice &slice)
    {
        const int n = int(slice.matrix.rows());
        const QVector<QPointF> nodes = expectedNodes(n);
        QVector<QLineSeries *> edges;
        for (int i = 0; i < n; ++i) {
            for (int j = i + 1; j < n; ++j) {
                const auto value = double(slice.matrix(i, j));
                QPen pen(slice.tree(i, j) != 0 ? QColor(Qt::red) : plainColor);
                if (value > -0.2) // 5 times that has no whole part
                    pen.setWidth(int(5.0 * value));
                auto *const edge = new QSplineSeries;
                edge->setPen(pen);
                edge->setProperty("value", value);
                edge->append({nodes[j], expectedMiddle(nodes[j], nodes[i]), nodes[i]});
                edges.append(edge);
            }
        }
        std::stable_sort(
            edges.begin(), edges.end(), [](const QLineSeries *left, const QLineSeries *right) {
                return left->property("value").toDouble() < right->property("value").toDouble();
            });
        for (QLineSeries *edge : edges)
            chart->addSeries(edge);
    }

    void addNodes(int n)
    {
        auto *const nodes = new QScatterSeries;
        nodes->setColor(Qt::black);
        nodes->setBorderColor(Qt::white);
        nodes->setMarkerSize(10);
        nodes->append(expectedNodes(n).toList());
        chart->addSeries(nodes);
    }

    void leaveTheRangeOfDefaultAxes()
    {
        chart->createDefaultAxes();
        for (QAbstractAxis *axis : chart->axes())
            axis->setRange(0, 640);
        for (QAbstractAxis *axis : chart->axes()) {
            chart->removeAxis(axis);
            delete axis;
        }
        auto *const axis = new QCategoryAxis;
        axis->setGridLineVisible(false);
        chart->addAxis(axis, Qt::AlignBottom);
    }

    QChart *const chart = new QChart;
};

QImage pictureOf(QWidget &widget)
{
    widget.resize(700, 720);
    widget.show();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(&widget));
    QCoreApplication::sendPostedEvents();
    return widget.grab().toImage();
}

class RingPixels : public testing::TestWithParam<int>
{
};

TEST_P(RingPixels, is_to_the_pixel_that_of_a_plain_chart)
{
    const Slice first(GetParam(), 1);
    const Slice second(GetParam(), 2);
    CircularPlotWidget ring;
    ring.setLabels(nodeNames(GetParam()));
    // Shown first: names that a resize leaves behind would be seen beside the new ones.
    pictureOf(ring);
    for (const Slice &slice : {first, second}) {
        ring.plotSlice(slice.matrix, 0, description(elements(slice.tree)));
        PlainRing plain(ring, slice);
        EXPECT_TRUE(pictureOf(ring) == pictureOf(plain));
        ring.setDisplayRange(0.3, 0.8);
        plain.showEdges(0.3, 0.8);
        EXPECT_TRUE(pictureOf(ring) == pictureOf(plain)) << "with a display range";
    }
}

INSTANTIATE_TEST_SUITE_P(Sizes, RingPixels, testing::Values(1, 10, 30, 60),
                         testing::PrintToStringParamName());

class Ring : public testing::Test
{
protected:
    void plot(const Eigen::MatrixXf &matrix, const std::vector<int> &tree = {})
    {
        ring.setLabels(nodeNames(int(matrix.rows())));
        ring.plotSlice(matrix, 0, description(tree));
    }

    QStringList labelTexts() const
    {
        QStringList texts;
        for (const MyGraphicsSimpleTextItem *label : visibleLabelsOf(ring))
            texts += label->toPlainText();
        return texts;
    }

    CircularPlotWidget ring;
};

TEST_F(Ring, is_set_up_before_the_first_plot)
{
    EXPECT_TRUE(ring.renderHints().testFlag(QPainter::Antialiasing));
    EXPECT_EQ(ring.dragMode(), QGraphicsView::NoDrag);
    EXPECT_EQ(ring.horizontalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
    EXPECT_EQ(ring.verticalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
    EXPECT_TRUE(ring.testAttribute(Qt::WA_MouseTracking));
    EXPECT_TRUE(ring.viewport()->hasMouseTracking());

    EXPECT_EQ(ring.scene()->itemIndexMethod(), QGraphicsScene::NoIndex);

    QChart *const chart = chartOf(ring);
    ASSERT_NE(chart, nullptr);
    EXPECT_EQ(chart->parentItem(), nullptr);
    EXPECT_EQ(chart->size(), QSizeF(660, 660));
    EXPECT_EQ(chart->layout()->preferredSize(), QSizeF(660, 660));
    EXPECT_FALSE(chart->legend()->isVisible());
    EXPECT_EQ(chart->margins(), QMargins());
    EXPECT_EQ(chart->backgroundRoundness(), 0.0);
    EXPECT_TRUE(chart->acceptHoverEvents());
    qreal left = 1, top = 1, right = 1, bottom = 1;
    chart->layout()->getContentsMargins(&left, &top, &right, &bottom);
    EXPECT_EQ(QMarginsF(left, top, right, bottom), QMarginsF());
    EXPECT_TRUE(chart->series().isEmpty());
    EXPECT_TRUE(labelsOf(ring).isEmpty());

    const QGraphicsSimpleTextItem *const value = valueItemOf(ring);
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(value->font(), QFont(QStringLiteral("Arial"), 10, 75));
    EXPECT_EQ(titleItemOf(ring), nullptr);
}

TEST_F(Ring, declares_no_signals_and_two_slots)
{
    const QMetaObject &meta = CircularPlotWidget::staticMetaObject;
    ASSERT_EQ(meta.methodCount() - meta.methodOffset(), 2);
    EXPECT_EQ(meta.method(meta.methodOffset()).methodSignature(), "hoveringLabel(bool)");
    EXPECT_EQ(meta.method(meta.methodOffset() + 1).methodSignature(),
              "highlightEdge(QPointF,bool)");
    EXPECT_EQ(meta.method(meta.methodOffset()).methodType(), QMetaMethod::Slot);
    EXPECT_EQ(meta.method(meta.methodOffset() + 1).methodType(), QMetaMethod::Slot);
}

TEST_F(Ring, maps_640_units_to_the_whole_plot_area_with_y_upwards)
{
    plot(Eigen::MatrixXf::Constant(4, 4, 0.5f));
    QChart *const chart = chartOf(ring);
    const QRectF area = chart->plotArea();
    EXPECT_EQ(chart->mapToPosition({0, 0}), area.bottomLeft());
    EXPECT_EQ(chart->mapToPosition({640, 640}), area.topRight());
    EXPECT_EQ(chart->mapToPosition({320, 320}), area.center());
    for (QAbstractSeries *series : chart->series())
        EXPECT_EQ(chart->mapToPosition({640, 640}, series), area.topRight());
}

TEST_F(Ring, has_one_axis_without_categories_and_grid)
{
    for (int slice = 0; slice < 2; ++slice) {
        plot(Eigen::MatrixXf::Constant(4, 4, 0.5f));
        const QList<QAbstractAxis *> axes = chartOf(ring)->axes();
        ASSERT_EQ(axes.size(), 1);
        const auto *const axis = qobject_cast<QCategoryAxis *>(axes.first());
        ASSERT_NE(axis, nullptr);
        EXPECT_EQ(axis->count(), 0);
        EXPECT_FALSE(axis->isGridLineVisible());
        EXPECT_EQ(axis->alignment(), Qt::AlignBottom);
        for (QAbstractSeries *series : chartOf(ring)->series())
            EXPECT_TRUE(series->attachedAxes().isEmpty());
    }
}

TEST_F(Ring, tells_of_its_edges_to_nothing_but_what_draws_them)
{
    const QObject *const dataSet = dataSetOf(*chartOf(ring));
    ASSERT_NE(dataSet, nullptr);
    for (int slice = 0; slice < 2; ++slice) {
        plot(Eigen::MatrixXf::Constant(10, 10, 0.5f));
        EXPECT_EQ(receiversOf(*dataSet, SIGNAL(seriesAdded(QAbstractSeries *))), 1);
        EXPECT_EQ(receiversOf(*dataSet, SIGNAL(seriesRemoved(QAbstractSeries *))), 1);
        EXPECT_TRUE(chartOf(ring)->legend()->markers().isEmpty());
    }
}

TEST_F(Ring, makes_no_axis_but_the_one_that_is_seen)
{
    struct MadeAxes : QObject {
        bool eventFilter(QObject *, QEvent *event) override
        {
            if (event->type() == QEvent::ChildAdded)
                children += static_cast<QChildEvent *>(event)->child();
            return false;
        }
        QVector<QObject *> children;
    } made;
    dataSetOf(*chartOf(ring))->installEventFilter(&made);
    plot(Eigen::MatrixXf::Constant(10, 10, 0.5f));
    // The edges, the nodes and the axis.
    EXPECT_EQ(made.children.size(), 45 + 1 + 1);
}

TEST_F(Ring, is_painted_once_for_a_slice)
{
    struct Paints : QObject {
        bool eventFilter(QObject *, QEvent *event) override
        {
            if (event->type() == QEvent::Paint)
                regions += static_cast<QPaintEvent *>(event)->region();
            return false;
        }
        QVector<QRegion> regions;
    } paints;
    pictureOf(ring);
    plot(Eigen::MatrixXf::Constant(10, 10, 0.5f));
    pictureOf(ring);
    ring.viewport()->installEventFilter(&paints);
    plot(Eigen::MatrixXf::Constant(10, 10, 0.25f));
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
    EXPECT_EQ(paints.regions.size(), 1);
}

TEST_F(Ring, shows_each_name_beside_its_own_node)
{
    constexpr int n = 10;
    plot(Eigen::MatrixXf::Constant(n, n, 0.5f));
    const QVector<QPointF> nodes = expectedNodes(n);
    QChart *const chart = chartOf(ring);
    for (const MyGraphicsSimpleTextItem *label : visibleLabelsOf(ring)) {
        int nearest = -1;
        double distance = 1e9;
        for (int node = 0; node < n; ++node) {
            const double away = QLineF(chart->mapToPosition(nodes[node]), label->pos()).length();
            if (away < distance) {
                distance = away;
                nearest = node;
            }
        }
        EXPECT_EQ(label->toPlainText(), QStringLiteral("Node %1").arg(nearest));
    }
}

TEST_F(Ring, draws_its_nodes_where_the_chart_maps_them)
{
    plot(Eigen::MatrixXf::Zero(10, 10));
    ring.resize(700, 700);
    const QImage picture = ring.grab().toImage();
    const double scale = picture.devicePixelRatio();
    for (const QPointF &node : expectedNodes(10)) {
        const QPointF inScene = chartOf(ring)->mapToScene(chartOf(ring)->mapToPosition(node));
        const QPoint inWidget = ring.viewport()->mapTo(&ring, ring.mapFromScene(inScene));
        EXPECT_EQ(picture.pixelColor((QPointF(inWidget) * scale).toPoint()), QColor(Qt::black));
    }
}

TEST_F(Ring, names_its_positions_in_the_mirrored_order)
{
    plot(Eigen::MatrixXf::Zero(1, 1));
    EXPECT_EQ(labelTexts(), QStringList({"Node 0"}));
    plot(Eigen::MatrixXf::Zero(2, 2));
    EXPECT_EQ(labelTexts(), QStringList({"Node 0", "Node 1"}));
    plot(Eigen::MatrixXf::Zero(5, 5));
    EXPECT_EQ(labelTexts(), QStringList({"Node 3", "Node 2", "Node 1", "Node 0", "Node 4"}));
}

TEST_F(Ring, numbers_the_nodes_without_a_name)
{
    ring.setLabels({"First", "Second"});
    ring.plotSlice(Eigen::MatrixXf::Zero(4, 4), 0, description());
    EXPECT_EQ(labelTexts(), QStringList({"2", "Second", "First", "3"}));
}

TEST_F(Ring, of_zeros_has_nodes_and_labels_and_no_edge)
{
    plot(Eigen::MatrixXf::Zero(10, 10));
    EXPECT_TRUE(edgesOf(ring).isEmpty());
    expectNodes(ring, 10);
    expectLabels(ring, 10, nodeNames(10));
}

TEST_F(Ring, of_zero_and_minus_zero_has_no_edge)
{
    plot(upperTriangle(3, {0.0f, -0.0f, 0.5f}));
    ASSERT_EQ(edgesOf(ring).size(), 1);
    EXPECT_EQ(edgesOf(ring)[0]->property("index").toInt(), 0);
    EXPECT_NE(edgeBetween(ring, 1, 2), nullptr);
}

TEST_F(Ring, never_reads_the_diagonal_and_what_is_below_it)
{
    Eigen::MatrixXf matrix = upperTriangle(3, {0.1f, 0.2f, 0.3f});
    matrix.diagonal().setConstant(nan);
    matrix(1, 0) = matrix(2, 0) = matrix(2, 1) = nan;
    plot(matrix);
    expectEdges(ring, matrix, {});
    EXPECT_EQ(edgesOf(ring).size(), 3);
}

TEST_F(Ring, draws_the_strongest_edge_last_and_equal_ones_as_they_come)
{
    plot(upperTriangle(4, {0.5f, nan, 0.2f, 0.5f, -0.5f, nan}));
    std::vector<int> order;
    for (const QSplineSeries *edge : edgesOf(ring))
        order.push_back(edge->property("index").toInt());
    EXPECT_EQ(order, std::vector<int>({1, 5, 4, 2, 0, 3}));
}

TEST_F(Ring, cuts_the_fraction_of_a_width)
{
    struct Row {
        float value;
        int width;
    };
    const Row rows[] = {
        {0.19f, 0}, {0.2f, 1},     {0.39f, 1},     {0.4f, 2},  {0.99f, 4},
        {1.0f, 5},  {-0.1f, 0},    {-0.19f, 0},    {-0.3f, 1}, {-1.0f, 1},
        {nan, 1},   {infinity, 1}, {-infinity, 1}, {1e30f, 1}, {6553.6f, 1},
    };
    for (const Row &row : rows) {
        plot(upperTriangle(2, {row.value}));
        ASSERT_EQ(edgesOf(ring).size(), 1) << row.value;
        const QSplineSeries *const edge = edgesOf(ring)[0];
        EXPECT_EQ(edge->pen().width(), row.width) << row.value;
        EXPECT_EQ(edge->pen().color(), plainColor) << row.value;
        const double width = 5.0 * double(row.value);
        EXPECT_TRUE(edge->property("pen-width").toDouble() == width ||
                    (std::isnan(width) && std::isnan(edge->property("pen-width").toDouble())))
            << row.value;
    }
}

TEST_F(Ring, takes_the_widest_pen_there_is)
{
    plot(upperTriangle(2, {6553.5f}));
    EXPECT_EQ(edgesOf(ring)[0]->pen().width(), 32767);
    // The chart makes the sensitive area of a line twice as wide as its pen.
    for (const QString &warning : takeWarnings())
        EXPECT_EQ(warning, "QPen::setWidthF: Setting a pen width that is out of range");
}

TEST_F(Ring, takes_the_elements_of_the_tree_column_by_column)
{
    // Only the entry of row 0 and column 2: the third column begins with element 6.
    std::vector<int> tree(9, 0);
    tree[6] = 1;
    plot(upperTriangle(3, {0.4f, 0.5f, 0.6f}), tree);
    EXPECT_FALSE(edgeBetween(ring, 0, 1)->property("mst_sig").isValid());
    EXPECT_TRUE(edgeBetween(ring, 0, 2)->property("mst_sig").toBool());
    EXPECT_FALSE(edgeBetween(ring, 1, 2)->property("mst_sig").isValid());
    EXPECT_EQ(edgeBetween(ring, 0, 2)->pen().color(), QColor(Qt::red));
    EXPECT_EQ(edgeBetween(ring, 0, 2)->pen().width(), 2);
    EXPECT_EQ(edgeBetween(ring, 0, 1)->pen().color(), plainColor);
}

TEST_F(Ring, bounds_itself_by_the_tree)
{
    const Eigen::MatrixXf matrix = upperTriangle(4, {1, 1, 1, 1, 1, 1});
    // Nine to fifteen elements make a tree of three nodes.
    for (const int elements : {9, 10, 15}) {
        plot(matrix, std::vector<int>(elements, 1));
        int red = 0;
        for (const QSplineSeries *edge : edgesOf(ring))
            red += edge->property("mst_sig").toBool() ? 1 : 0;
        EXPECT_EQ(red, 3) << elements;
    }
    plot(matrix, std::vector<int>(100, 1));
    for (const QSplineSeries *edge : edgesOf(ring))
        EXPECT_TRUE(edge->property("mst_sig").toBool());
    plot(matrix);
    for (const QSplineSeries *edge : edgesOf(ring))
        EXPECT_FALSE(edge->property("mst_sig").isValid()) << "the tree of the slice before";
}

TEST_F(Ring, sets_the_properties_of_an_edge_in_their_order)
{
    plot(upperTriangle(2, {0.5f}), {0, 1, 1, 0});
    const QList<QByteArray> expected = {
        "value",      "pen-width", "cmap-color",    "default-color", "pen",    "original-pen",
        "fadein-pen", "index",     "emitting-from", "emitting-to",   "mst_sig"};
    EXPECT_EQ(edgesOf(ring)[0]->dynamicPropertyNames(), expected);
}

TEST_F(Ring, registers_the_type_of_the_tree)
{
    plot(upperTriangle(2, {1.0f}), {0, 1, 1, 0});
    EXPECT_NE(QMetaType::type("std::vector<int>"), int(QMetaType::UnknownType));
}

TEST_F(Ring, survives_matrices_of_odd_shapes)
{
    struct Row {
        const char *name;
        Eigen::MatrixXf matrix;
        int edges;
        int nodes;
    };
    const Row rows[] = {
        {"empty", Eigen::MatrixXf(0, 0), 0, 0},
        {"one node", Eigen::MatrixXf::Constant(1, 1, 0.5f), 0, 1},
        {"all NaN", Eigen::MatrixXf::Constant(5, 5, nan), 10, 5},
        {"all zero", Eigen::MatrixXf::Zero(5, 5), 0, 5},
        {"all equal", Eigen::MatrixXf::Constant(5, 5, 0.5f), 10, 5},
        {"infinite", Eigen::MatrixXf::Constant(5, 5, infinity), 10, 5},
        {"minus infinite", Eigen::MatrixXf::Constant(5, 5, -infinity), 10, 5},
        {"wide", Eigen::MatrixXf::Constant(2, 5, 0.5f), 1, 5},
        {"tall", Eigen::MatrixXf::Constant(5, 2, 0.5f), 1, 2},
        {"no rows", Eigen::MatrixXf(0, 3), 0, 3},
        {"no columns", Eigen::MatrixXf(3, 0), 0, 0},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.name);
        CircularPlotWidget fresh;
        fresh.setLabels(nodeNames(5));
        fresh.plotSlice(row.matrix, 0, description());
        EXPECT_EQ(edgesOf(fresh).size(), row.edges);
        ASSERT_NE(nodesOf(fresh), nullptr);
        EXPECT_EQ(nodesOf(fresh)->count(), row.nodes);
        EXPECT_EQ(visibleLabelsOf(fresh).size(), row.nodes);
        fresh.show();
        fresh.setColorizeEdges(true);
        fresh.setThicknessMultiplier(10.0);
        fresh.setUseWeights(false);
        fresh.setUseWeights(true);
        fresh.setDisplayRange(0.0, 1.0);
        fresh.setNodesSize(20);
        fresh.setLabelsVisible(false);
        EXPECT_FALSE(fresh.grab().isNull());
    }
}

TEST_F(Ring, replaces_everything_with_the_next_slice)
{
    SKIP_WITHOUT_REAL_MATRICES();
    const Eigen::MatrixXf first = realMatrix(10);
    const Eigen::MatrixXf second = first * 0.5f;
    plot(first);
    const QVector<MyGraphicsSimpleTextItem *> labelsOfFirst = labelsOf(ring);
    plot(second);
    expectNodes(ring, 10);
    expectEdges(ring, second, {});
    expectLabels(ring, 10, nodeNames(10));
    EXPECT_EQ(labelsOf(ring).size(), 20) << "labels are hidden, not deleted";
    for (const MyGraphicsSimpleTextItem *label : labelsOfFirst)
        EXPECT_FALSE(label->isVisible());
}

TEST_F(Ring, of_another_size_stands_where_the_first_one_stood)
{
    plot(Eigen::MatrixXf::Zero(4, 4));
    plot(Eigen::MatrixXf::Zero(3, 3));
    EXPECT_EQ(nodesOf(ring)->pointsVector(), expectedNodes(4).mid(0, 3));
}

TEST_F(Ring, shows_only_the_title_of_a_trigger)
{
    plot(Eigen::MatrixXf::Constant(4, 4, 0.5f));
    for (const int type : {1, 2, -1}) {
        ring.plotSlice(Eigen::MatrixXf::Constant(4, 4, 0.5f), type,
                       triggerDescription(QStringLiteral("Button %1 press")));
        EXPECT_TRUE(chartOf(ring)->series().isEmpty());
        EXPECT_TRUE(visibleLabelsOf(ring).isEmpty());
        const QGraphicsSimpleTextItem *const title = titleItemOf(ring);
        ASSERT_NE(title, nullptr);
        EXPECT_EQ(title->text(), QStringLiteral("Trigger \"Button %1 press\""));
        EXPECT_EQ(title->font(), QFont(QStringLiteral("Arial"), 14));
        EXPECT_EQ(title->pos(), QPointF(330, 330));
        EXPECT_TRUE(title->isVisible());
    }

    plot(Eigen::MatrixXf::Constant(4, 4, 0.5f));
    EXPECT_FALSE(titleItemOf(ring)->isVisible());
    EXPECT_EQ(edgesOf(ring).size(), 6);
    EXPECT_EQ(visibleLabelsOf(ring).size(), 4);

    const QGraphicsSimpleTextItem *const title = titleItemOf(ring);
    ring.plotSlice(Eigen::MatrixXf(), 1, triggerDescription(QStringLiteral("Again")));
    EXPECT_EQ(titleItemOf(ring), title) << "made once";
    EXPECT_EQ(title->text(), QStringLiteral("Trigger \"Again\""));
    EXPECT_TRUE(title->isVisible());
}

TEST_F(Ring, can_begin_with_a_trigger)
{
    ring.plotSlice(Eigen::MatrixXf::Constant(4, 4, 0.5f), 1, triggerDescription("Start"));
    EXPECT_TRUE(chartOf(ring)->series().isEmpty());
    EXPECT_TRUE(labelsOf(ring).isEmpty());
    plot(Eigen::MatrixXf::Constant(4, 4, 0.5f));
    expectNodes(ring, 4);
}

} // namespace
