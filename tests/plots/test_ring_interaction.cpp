// SPDX-License-Identifier: GPL-3.0-or-later
#include "plots/color_map.h"
#include "tests/plots/plot_fixture.h"

#include <QApplication>
#include <QGraphicsScene>
#include <QTest>
#include <QTimer>
#include <QWheelEvent>

#include <cmath>
#include <functional>
#include <limits>

using namespace QtCharts;

namespace
{

constexpr float nan = std::numeric_limits<float>::quiet_NaN();
const QColor plainColor(0, 0, 0, 30);
const QColor fadedColor(0, 0, 0, 10);

QColor colorOf(const QSplineSeries *edge)
{
    return edge->pen().color();
}

/// Counts the paint events that reach a widget.
class PaintCounter : public QObject
{
public:
    explicit PaintCounter(QWidget &widget) { widget.installEventFilter(this); }
    bool eventFilter(QObject *, QEvent *event) override
    {
        count += event->type() == QEvent::Paint ? 1 : 0;
        return false;
    }
    int count = 0;
};

/// A ring of four nodes whose six edges have the values 0.1 to 0.6 in the order in which they are
/// made: 0-1, 0-2, 0-3, 1-2, 1-3, 2-3. The last one is of the spanning tree.
class RingInUse : public testing::Test
{
protected:
    static constexpr int n = 4;

    void SetUp() override
    {
        ring.setLabels(nodeNames(n));
        plot();
    }

    static Eigen::MatrixXf matrix()
    {
        Eigen::MatrixXf values = Eigen::MatrixXf::Zero(n, n);
        float value = 0.0f;
        for (int i = 0; i < n; ++i) {
            for (int j = i + 1; j < n; ++j)
                values(i, j) = values(j, i) = value += 0.1f;
        }
        return values;
    }

    static QVariantHash tree()
    {
        std::vector<int> elements(n * n, 0);
        elements[3 * n + 2] = elements[2 * n + 3] = 1;
        return {{QStringLiteral("mst"), QVariant::fromValue(elements)}};
    }

    void plot() { ring.plotSlice(matrix(), 0, tree()); }
    void plot(const Eigen::MatrixXf &other) { ring.plotSlice(other, 0, QVariantHash()); }

    void show()
    {
        ring.resize(800, 800);
        ring.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&ring));
        QTest::mouseMove(ring.windowHandle(), outside);
    }

    QPoint inWindow(const QPointF &inScene) const
    {
        return ring.viewport()->mapTo(&ring, ring.mapFromScene(inScene));
    }

    QSplineSeries *edge(int one, int other) const { return edgeBetween(ring, one, other); }

    /// Which edges are visible, in the order in which they were made: "0-1 2-3".
    std::string visibleEdges() const
    {
        std::string text;
        for (int i = 0; i < n; ++i) {
            for (int j = i + 1; j < n; ++j) {
                if (edge(i, j) && edge(i, j)->isVisible())
                    text += (text.empty() ? "" : " ") + std::to_string(i) + "-" + std::to_string(j);
            }
        }
        return text;
    }

    MyGraphicsSimpleTextItem *label(int node) const
    {
        for (MyGraphicsSimpleTextItem *item : visibleLabelsOf(ring)) {
            if (item->property("index").toInt() == node)
                return item;
        }
        return nullptr;
    }

    const std::string allEdges = "0-1 0-2 0-3 1-2 1-3 2-3";
    const QPoint outside{2, 2};
    CircularPlotWidget ring;
};

// Hovering an edge.

TEST_F(RingInUse, a_hovered_edge_is_blue_and_the_others_fade)
{
    const QPen before = edge(0, 1)->pen();
    emit edge(1, 3)->hovered(QPointF(), true);

    QPen highlighted(Qt::blue);
    highlighted.setWidth(2); // 5 times 0.5, cut
    EXPECT_EQ(edge(1, 3)->pen(), highlighted);
    EXPECT_EQ(edge(1, 3)->property("pen").value<QPen>(), highlighted);

    QPen faded = before;
    faded.setColor(fadedColor);
    EXPECT_EQ(edge(0, 1)->pen(), faded);
    EXPECT_EQ(edge(0, 1)->property("pen").value<QPen>(), faded);
    EXPECT_EQ(edge(0, 1)->property("fadein-pen").value<QPen>(), before);

    QPen ofTree(Qt::red);
    ofTree.setWidth(3);
    EXPECT_EQ(edge(2, 3)->pen(), ofTree) << "a spanning-tree edge does not fade";

    const QGraphicsSimpleTextItem *const value = valueItemOf(ring);
    EXPECT_TRUE(value->isVisible());
    EXPECT_EQ(value->text(), QStringLiteral("0.5"));
    EXPECT_EQ(value->pos(), chartOf(ring)->mapToPosition(edge(1, 3)->at(1)));
}

TEST_F(RingInUse, leaving_an_edge_restores_all)
{
    std::vector<QPen> before;
    for (const QSplineSeries *one : edgesOf(ring))
        before.push_back(one->pen());
    edge(1, 3)->setPointLabelsVisible(true);

    emit edge(1, 3)->hovered(QPointF(), true);
    emit edge(1, 3)->hovered(QPointF(), false);

    std::vector<QPen> after;
    for (const QSplineSeries *one : edgesOf(ring)) {
        after.push_back(one->pen());
        EXPECT_EQ(one->property("pen").value<QPen>(), one->pen());
    }
    EXPECT_EQ(after, before);
    EXPECT_FALSE(edge(1, 3)->pointLabelsVisible());
    EXPECT_FALSE(valueItemOf(ring)->isVisible());
}

TEST_F(RingInUse, a_hovered_edge_of_the_spanning_tree_stays_red)
{
    const QPen before = edge(2, 3)->pen();
    emit edge(2, 3)->hovered(QPointF(), true);
    EXPECT_EQ(edge(2, 3)->pen(), before);
    EXPECT_EQ(colorOf(edge(0, 1)), fadedColor);
    EXPECT_EQ(valueItemOf(ring)->text(), QStringLiteral("0.6"));
    emit edge(2, 3)->hovered(QPointF(), false);
    EXPECT_EQ(edge(2, 3)->pen(), before);
    EXPECT_EQ(colorOf(edge(0, 1)), plainColor);
}

TEST_F(RingInUse, shows_the_value_with_six_digits)
{
    Eigen::MatrixXf values = Eigen::MatrixXf::Zero(2, 2);
    const QPair<float, const char *> rows[] = {{0.12345678f, "0.123457"},
                                               {-0.5f, "-0.5"},
                                               {1e-7f, "1e-07"},
                                               {1234567.0f, "1.23457e+06"},
                                               {std::numeric_limits<float>::infinity(), "inf"}};
    for (const auto &[value, text] : rows) {
        values(0, 1) = value;
        plot(values);
        emit edge(0, 1)->hovered(QPointF(), true);
        EXPECT_EQ(valueItemOf(ring)->text(), QString::fromLatin1(text));
        EXPECT_EQ(colorOf(edge(0, 1)), QColor(Qt::blue));
    }
}

TEST_F(RingInUse, hovering_a_hidden_edge_does_nothing)
{
    emit edge(0, 1)->hovered(QPointF(), true);
    emit edge(0, 1)->hovered(QPointF(), false);
    const QPointF place = valueItemOf(ring)->pos();
    edge(1, 3)->setVisible(false);
    for (const bool state : {true, false}) {
        emit edge(1, 3)->hovered(QPointF(), state);
        EXPECT_EQ(colorOf(edge(1, 3)), plainColor);
        EXPECT_EQ(colorOf(edge(0, 1)), plainColor);
        EXPECT_EQ(valueItemOf(ring)->text(), QStringLiteral("0.1"));
        EXPECT_EQ(valueItemOf(ring)->pos(), place);
        EXPECT_FALSE(valueItemOf(ring)->isVisible());
    }
}

TEST_F(RingInUse, hovering_an_edge_that_is_no_number_does_nothing)
{
    emit edge(0, 1)->hovered(QPointF(), true);
    emit edge(0, 1)->hovered(QPointF(), false);
    const QPointF place = valueItemOf(ring)->pos();
    Eigen::MatrixXf values = matrix();
    values(1, 3) = nan;
    plot(values);
    emit edge(1, 3)->hovered(QPointF(), true);
    EXPECT_EQ(colorOf(edge(1, 3)), plainColor);
    EXPECT_EQ(colorOf(edge(0, 1)), plainColor);
    EXPECT_EQ(valueItemOf(ring)->text(), QStringLiteral("0.1"));
    EXPECT_EQ(valueItemOf(ring)->pos(), place);
    EXPECT_FALSE(valueItemOf(ring)->isVisible());
}

TEST_F(RingInUse, the_highlight_keeps_its_width_where_the_edges_is_none_for_a_pen)
{
    Eigen::MatrixXf values = Eigen::MatrixXf::Zero(2, 2);
    for (const float value : {-1.0f, 1e9f, std::numeric_limits<float>::infinity()}) {
        values(0, 1) = value;
        plot(values);
        emit edge(0, 1)->hovered(QPointF(), true);
        EXPECT_EQ(edge(0, 1)->pen().width(), 1);
    }
}

TEST_F(RingInUse, the_highlight_takes_the_width_of_the_last_thickness)
{
    ring.setThicknessMultiplier(10.0);
    emit edge(1, 3)->hovered(QPointF(), true);
    EXPECT_EQ(edge(1, 3)->pen().width(), 5);
    emit edge(1, 3)->hovered(QPointF(), false);
    ring.setFixedThickness(7.9f);
    ring.setUseWeights(false);
    emit edge(1, 3)->hovered(QPointF(), true);
    EXPECT_EQ(edge(1, 3)->pen().width(), 7);
}

TEST_F(RingInUse, leaving_an_edge_colours_again)
{
    ring.setColorizeEdges(true);
    emit edge(1, 3)->hovered(QPointF(), true);
    EXPECT_EQ(colorOf(edge(0, 1)), fadedColor);
    emit edge(1, 3)->hovered(QPointF(), false);
    EXPECT_EQ(colorOf(edge(0, 1)), valueToColor(double(0.1f)));
    EXPECT_EQ(colorOf(edge(1, 3)), valueToColor(edge(1, 3)->property("value").toReal()));
    EXPECT_EQ(colorOf(edge(2, 3)), QColor(Qt::red));
}

TEST_F(RingInUse, a_call_from_nothing_that_can_be_hovered_does_nothing)
{
    ring.highlightEdge(QPointF(), true);
    ring.hoveringLabel(true);
    EXPECT_EQ(visibleEdges(), allEdges);
    EXPECT_EQ(colorOf(edge(0, 1)), plainColor);
    // A sender of another class.
    QTimer timer;
    QObject::connect(&timer, &QObject::objectNameChanged, &ring,
                     [this] { ring.hoveringLabel(true); });
    timer.setObjectName(QStringLiteral("timer"));
    EXPECT_EQ(visibleEdges(), allEdges);
}

TEST_F(RingInUse, reacts_to_the_mouse_on_an_edge)
{
    Eigen::MatrixXf values(2, 2);
    values << 0, 0.5f, 0.5f, 0;
    plot(values);
    show();
    QChart *const chart = chartOf(ring);
    const QPoint middle = inWindow(chart->mapToScene(chart->mapToPosition(edge(0, 1)->at(1))));
    QTest::mouseMove(ring.windowHandle(), middle);
    EXPECT_EQ(colorOf(edge(0, 1)), QColor(Qt::blue));
    EXPECT_TRUE(valueItemOf(ring)->isVisible());
    QTest::mouseMove(ring.windowHandle(), outside);
    EXPECT_EQ(colorOf(edge(0, 1)), plainColor);
    EXPECT_FALSE(valueItemOf(ring)->isVisible());
}

// Hovering a label.

TEST_F(RingInUse, a_hovered_label_shows_only_the_edges_of_its_node)
{
    const int labels = visibleLabelsOf(ring).size();
    for (const auto &[node, edges] : {std::pair(0, "0-1 0-2 0-3"), std::pair(1, "0-1 1-2 1-3"),
                                      std::pair(2, "0-2 1-2 2-3"), std::pair(3, "0-3 1-3 2-3")}) {
        emit label(node)->hovering(true);
        EXPECT_EQ(visibleEdges(), edges);
        EXPECT_TRUE(nodesOf(ring)->isVisible());
        EXPECT_EQ(visibleLabelsOf(ring).size(), labels);
        emit label(node)->hovering(false);
        EXPECT_EQ(visibleEdges(), allEdges);
    }
}

TEST_F(RingInUse, a_hovered_label_brings_no_filtered_edge_back)
{
    ring.setDisplayRange(0.25, 0.55); // leaves 0.3, 0.4 and 0.5
    ASSERT_EQ(visibleEdges(), "0-3 1-2 1-3");
    emit label(1)->hovering(true);
    EXPECT_EQ(visibleEdges(), "1-2 1-3");
    emit label(1)->hovering(false);
    EXPECT_EQ(visibleEdges(), "0-3 1-2 1-3");
}

TEST_F(RingInUse, reacts_to_the_mouse_on_a_label)
{
    show();
    const QPoint onLabel = inWindow(label(2)->sceneBoundingRect().center());
    QTest::mouseMove(ring.windowHandle(), onLabel);
    EXPECT_EQ(visibleEdges(), "0-2 1-2 2-3");
    QTest::mouseMove(ring.windowHandle(), outside);
    EXPECT_EQ(visibleEdges(), allEdges);
}

TEST_F(RingInUse, a_resize_while_a_label_is_hovered_deletes_it_and_the_next_one_takes_over)
{
    show();
    for (int size = 801; size < 806; ++size) {
        const int before = labelsOf(ring).size();
        QTest::mouseMove(ring.windowHandle(), inWindow(label(2)->sceneBoundingRect().center()));
        EXPECT_EQ(visibleEdges(), "0-2 1-2 2-3");
        ring.resize(size, size);
        EXPECT_EQ(labelsOf(ring).size(), before / 2 + n);
        // A label that goes while it is hovered says nothing. The new one in its place does.
        QTest::mouseMove(ring.windowHandle(), outside);
        QTest::mouseMove(ring.windowHandle(), inWindow(label(2)->sceneBoundingRect().center()));
        QTest::mouseMove(ring.windowHandle(), outside);
        EXPECT_EQ(visibleEdges(), allEdges);
    }
}

TEST_F(RingInUse, a_new_slice_while_a_label_is_hovered_shows_all_edges)
{
    show();
    QTest::mouseMove(ring.windowHandle(), inWindow(label(2)->sceneBoundingRect().center()));
    plot();
    EXPECT_EQ(visibleEdges(), allEdges);
    QTest::mouseMove(ring.windowHandle(), outside);
    EXPECT_EQ(visibleEdges(), allEdges);
}

// The display range.

TEST_F(RingInUse, the_display_range_excludes_both_of_its_ends)
{
    const double low = edge(0, 2)->property("value").toReal();
    const double high = edge(1, 3)->property("value").toReal();
    ring.setDisplayRange(low, high);
    EXPECT_EQ(visibleEdges(), "0-3 1-2");
    EXPECT_EQ(edge(0, 2)->property("filtered-out"), QVariant(true));
    EXPECT_EQ(edge(0, 3)->property("filtered-out"), QVariant(false));
    EXPECT_EQ(edge(2, 3)->property("filtered-out"), QVariant(true)) << "also of the spanning tree";

    ring.setDisplayRange(0.0, 1.0);
    EXPECT_EQ(visibleEdges(), allEdges);
    EXPECT_EQ(edge(0, 2)->property("filtered-out"), QVariant(false));
}

TEST_F(RingInUse, the_full_span_hides_what_is_not_above_zero_and_what_is_not_below_one)
{
    Eigen::MatrixXf values = matrix();
    values(0, 1) = -0.5f;
    values(0, 2) = 1.0f;
    values(0, 3) = 1.5f;
    values(1, 2) = nan;
    plot(values);
    ring.setDisplayRange(0.0, 1.0);
    EXPECT_EQ(visibleEdges(), "1-2 1-3 2-3") << "what is no number passes";
    EXPECT_EQ(edge(1, 2)->property("filtered-out"), QVariant(false));
}

TEST_F(RingInUse, the_display_range_changes_no_pen_and_no_label)
{
    std::vector<QPen> before;
    for (const QSplineSeries *one : edgesOf(ring))
        before.push_back(one->pen());
    ring.setDisplayRange(0.25, 0.45);
    std::vector<QPen> after;
    for (const QSplineSeries *one : edgesOf(ring))
        after.push_back(one->pen());
    EXPECT_EQ(after, before);
    EXPECT_TRUE(nodesOf(ring)->isVisible());
    EXPECT_EQ(visibleLabelsOf(ring).size(), n);
}

// Thickness and colour.

TEST_F(RingInUse, the_multiplier_changes_all_widths)
{
    ring.setThicknessMultiplier(10.0);
    EXPECT_EQ(edge(0, 1)->pen().width(), 1);
    EXPECT_EQ(edge(1, 3)->pen().width(), 5);
    EXPECT_EQ(edge(2, 3)->pen().width(), 6) << "also of the spanning tree";
    EXPECT_EQ(edge(1, 3)->property("pen-width"),
              QVariant(10.0 * edge(1, 3)->property("value").toReal()));
    EXPECT_EQ(edge(1, 3)->property("pen").value<QPen>(), edge(1, 3)->pen());
    EXPECT_EQ(colorOf(edge(1, 3)), plainColor);
}

TEST_F(RingInUse, the_multiplier_is_kept_in_single_precision)
{
    for (const double multiplier : {0.1, 3.14159, 7.25}) {
        ring.setThicknessMultiplier(multiplier);
        EXPECT_EQ(edge(1, 3)->property("pen-width"),
                  QVariant(double(float(multiplier)) * edge(1, 3)->property("value").toReal()));
    }
}

TEST_F(RingInUse, without_weights_all_have_the_fixed_thickness)
{
    ring.setFixedThickness(3.5f);
    EXPECT_EQ(edge(1, 3)->pen().width(), 2) << "not while weights are used";
    ring.setUseWeights(false);
    for (const QSplineSeries *one : edgesOf(ring)) {
        EXPECT_EQ(one->pen().width(), 3);
        EXPECT_EQ(one->property("pen-width"), QVariant(3.5));
    }
    ring.setFixedThickness(1.0f);
    EXPECT_EQ(edge(1, 3)->pen().width(), 1);
    ring.setThicknessMultiplier(10.0);
    EXPECT_EQ(edge(1, 3)->pen().width(), 1);
    ring.setUseWeights(true);
    EXPECT_EQ(edge(1, 3)->pen().width(), 5);
}

TEST_F(RingInUse, a_width_that_is_none_for_a_pen_leaves_the_pen_as_it_is)
{
    Eigen::MatrixXf values = matrix();
    values(0, 1) = -0.5f;
    values(0, 2) = nan;
    plot(values);
    ring.setFixedThickness(4.0f);
    ring.setUseWeights(false);
    ring.setUseWeights(true);
    EXPECT_EQ(edge(0, 1)->pen().width(), 4);
    EXPECT_EQ(edge(0, 1)->property("pen-width"), QVariant(-2.5));
    EXPECT_EQ(edge(0, 2)->pen().width(), 4);
    EXPECT_TRUE(std::isnan(edge(0, 2)->property("pen-width").toDouble()));
    EXPECT_EQ(edge(1, 3)->pen().width(), 2);
}

TEST_F(RingInUse, colours_all_but_the_spanning_tree_by_their_values)
{
    ring.setColorizeEdges(true);
    for (const QSplineSeries *one : edgesOf(ring)) {
        if (one == edge(2, 3))
            continue;
        EXPECT_EQ(colorOf(one), valueToColor(one->property("value").toReal()));
        EXPECT_EQ(one->property("pen").value<QPen>(), one->pen());
        EXPECT_EQ(one->property("fadein-pen").value<QPen>().color(), plainColor) << "not touched";
    }
    EXPECT_EQ(colorOf(edge(2, 3)), QColor(Qt::red));
    EXPECT_EQ(edge(1, 3)->pen().width(), 2);

    ring.setColorizeEdges(false);
    EXPECT_EQ(colorOf(edge(1, 3)), plainColor);
    EXPECT_EQ(colorOf(edge(2, 3)), QColor(Qt::red));
}

TEST_F(RingInUse, a_change_of_thickness_keeps_the_colours)
{
    ring.setColorizeEdges(true);
    const QColor color = colorOf(edge(1, 3));
    ASSERT_NE(color, plainColor);
    ring.setThicknessMultiplier(8.0);
    EXPECT_EQ(colorOf(edge(1, 3)), color);
    ring.setUseWeights(false);
    EXPECT_EQ(colorOf(edge(1, 3)), color);
    ring.setFixedThickness(6.0f);
    EXPECT_EQ(colorOf(edge(1, 3)), color);
    EXPECT_EQ(edge(1, 3)->pen().width(), 6);
}

TEST_F(RingInUse, a_change_of_thickness_while_an_edge_is_hovered_is_gone_after_it)
{
    emit edge(0, 1)->hovered(QPointF(), true);
    ring.setThicknessMultiplier(10.0);
    EXPECT_EQ(edge(1, 3)->pen().width(), 5);
    emit edge(0, 1)->hovered(QPointF(), false);
    EXPECT_EQ(edge(1, 3)->pen().width(), 2) << "the pen from before the hover";
}

TEST_F(RingInUse, colours_turned_off_while_an_edge_is_hovered_come_back_after_it)
{
    ring.setColorizeEdges(true);
    emit edge(0, 1)->hovered(QPointF(), true);
    ring.setColorizeEdges(false);
    EXPECT_EQ(colorOf(edge(1, 3)), plainColor);
    emit edge(0, 1)->hovered(QPointF(), false);
    EXPECT_EQ(colorOf(edge(1, 3)), valueToColor(edge(1, 3)->property("value").toReal()))
        << "the pen from before the hover";
}

TEST_F(RingInUse, a_change_of_thickness_before_an_edge_is_hovered_stays_after_it)
{
    ring.setThicknessMultiplier(10.0);
    for (int time = 0; time < 2; ++time) {
        emit edge(0, 1)->hovered(QPointF(), true);
        EXPECT_EQ(edge(1, 3)->pen().width(), 5);
        emit edge(0, 1)->hovered(QPointF(), false);
        EXPECT_EQ(edge(0, 1)->pen().width(), 1);
        EXPECT_EQ(edge(1, 3)->pen().width(), 5);
        EXPECT_EQ(edge(1, 3)->property("original-pen").value<QPen>().width(), 2);
    }
}

// Nodes and labels.

TEST_F(RingInUse, sets_the_size_of_the_nodes)
{
    ring.setNodesSize(25);
    EXPECT_EQ(nodesOf(ring)->markerSize(), 25.0);
}

TEST_F(RingInUse, the_size_of_the_nodes_changes_nothing_under_a_trigger)
{
    ring.setNodesSize(25);
    ring.plotSlice(matrix(), 1, QVariantHash());
    ring.setNodesSize(30);
    EXPECT_TRUE(chartOf(ring)->series().isEmpty());
    plot();
    EXPECT_EQ(nodesOf(ring)->markerSize(), 10.0);
}

TEST(RingBeforeItsFirstPlot, takes_every_setting)
{
    CircularPlotWidget ring;
    ring.setNodesSize(25);
    ring.setColorizeEdges(true);
    ring.setDisplayRange(0.0, 1.0);
    ring.setUseWeights(false);
    ring.setFixedThickness(3.0f);
    ring.setThicknessMultiplier(3.0);
    ring.setLabelsVisible(false);
    ring.resize(500, 500);
    ring.show();
    EXPECT_TRUE(chartOf(ring)->series().isEmpty());
    EXPECT_TRUE(labelsOf(ring).isEmpty());
}

TEST_F(RingInUse, hides_and_shows_the_labels)
{
    ring.setLabelsVisible(false);
    EXPECT_TRUE(visibleLabelsOf(ring).isEmpty());
    ring.setLabelsVisible(true);
    EXPECT_EQ(visibleLabelsOf(ring).size(), n);
}

TEST_F(RingInUse, showing_the_labels_shows_those_of_earlier_slices_too)
{
    plot();
    EXPECT_EQ(visibleLabelsOf(ring).size(), n);
    ring.setLabelsVisible(true);
    ASSERT_EQ(visibleLabelsOf(ring).size(), 2 * n);
    for (int k = 0; k < n; ++k) {
        EXPECT_EQ(labelsOf(ring)[k]->pos(), labelsOf(ring)[n + k]->pos());
        EXPECT_EQ(labelsOf(ring)[k]->toPlainText(), labelsOf(ring)[n + k]->toPlainText());
    }
}

// What a new slice takes over and what not.

TEST_F(RingInUse, a_new_slice_has_nodes_of_the_first_size)
{
    ring.setNodesSize(25);
    plot();
    EXPECT_EQ(nodesOf(ring)->markerSize(), 10.0);
}

TEST_F(RingInUse, a_new_slice_shows_its_labels)
{
    ring.setLabelsVisible(false);
    plot();
    EXPECT_EQ(visibleLabelsOf(ring).size(), n);
}

TEST_F(RingInUse, a_new_slice_is_coloured_after_the_next_hover_of_an_edge)
{
    ring.setColorizeEdges(true);
    plot();
    EXPECT_EQ(colorOf(edge(1, 3)), plainColor);
    emit edge(0, 1)->hovered(QPointF(), true);
    emit edge(0, 1)->hovered(QPointF(), false);
    EXPECT_EQ(colorOf(edge(1, 3)), valueToColor(edge(1, 3)->property("value").toReal()));
    plot();
    ring.setColorizeEdges(true);
    EXPECT_EQ(colorOf(edge(1, 3)), valueToColor(edge(1, 3)->property("value").toReal()));
}

TEST_F(RingInUse, a_new_slice_without_weights_has_width_one_until_the_thickness_changes)
{
    ring.setUseWeights(false);
    ring.setFixedThickness(6.0f);
    plot();
    for (const QSplineSeries *one : edgesOf(ring)) {
        EXPECT_EQ(one->pen().width(), 1);
        EXPECT_EQ(one->property("pen-width"), QVariant(5.0 * one->property("value").toReal()));
    }
    ring.setFixedThickness(6.0f);
    EXPECT_EQ(edge(1, 3)->pen().width(), 6);
    EXPECT_EQ(edge(1, 3)->property("pen-width"), QVariant(6.0));
}

TEST_F(RingInUse, a_new_slice_keeps_the_multiplier)
{
    ring.setThicknessMultiplier(10.0);
    plot();
    EXPECT_EQ(edge(1, 3)->pen().width(), 5);
}

TEST_F(RingInUse, a_new_slice_is_not_filtered)
{
    ring.setDisplayRange(0.25, 0.45);
    plot();
    EXPECT_EQ(visibleEdges(), allEdges);
    EXPECT_FALSE(edge(0, 1)->property("filtered-out").isValid());
}

TEST_F(RingInUse, names_are_taken_with_the_next_slice)
{
    ring.setLabels({"A", "B", "C", "D"});
    EXPECT_EQ(label(3)->toPlainText(), QStringLiteral("Node 3"));
    plot();
    EXPECT_EQ(label(3)->toPlainText(), QStringLiteral("D"));
}

// Resizing.

TEST_F(RingInUse, a_resize_replaces_every_second_label_and_adds_a_full_set)
{
    const QVector<MyGraphicsSimpleTextItem *> before = labelsOf(ring);
    ASSERT_EQ(before.size(), n);
    show(); // with its first resize
    QVector<MyGraphicsSimpleTextItem *> after = labelsOf(ring);
    ASSERT_EQ(after.size(), n / 2 + n);
    EXPECT_EQ(after[0], before[1]);
    EXPECT_EQ(after[1], before[3]);
    for (const MyGraphicsSimpleTextItem *item : after)
        EXPECT_TRUE(item->isVisible());

    ring.resize(700, 700);
    EXPECT_EQ(labelsOf(ring).size(), 6 / 2 + n);
    ring.resize(701, 701);
    EXPECT_EQ(labelsOf(ring).size(), 7 / 2 + n) << "of seven the first, third, fifth and last go";
}

TEST_F(RingInUse, labels_made_by_a_resize_stand_where_the_first_ones_stood)
{
    struct Label {
        QString text;
        QPointF place;
        qreal rotation;
        bool operator==(const Label &other) const
        {
            return text == other.text && place == other.place && rotation == other.rotation;
        }
    };
    const auto newest = [this] {
        std::vector<Label> labels;
        for (const MyGraphicsSimpleTextItem *item : labelsOf(ring).mid(labelsOf(ring).size() - n))
            labels.push_back({item->toPlainText(), item->pos(), item->rotation()});
        return labels;
    };
    const std::vector<Label> first = newest();
    show();
    for (const QSize &size : {QSize(300, 900), QSize(900, 300)}) {
        ring.resize(size); // the chart keeps its size, and its centre
        EXPECT_EQ(newest(), first);
    }
}

TEST_F(RingInUse, labels_that_survive_a_resize_stay_as_they_were)
{
    ring.setLabelsVisible(false);
    const QPointF place = labelsOf(ring)[1]->pos();
    show();
    ASSERT_EQ(labelsOf(ring).size(), n / 2 + n);
    EXPECT_FALSE(labelsOf(ring)[0]->isVisible());
    EXPECT_FALSE(labelsOf(ring)[1]->isVisible());
    EXPECT_EQ(labelsOf(ring)[0]->pos(), place);
    EXPECT_EQ(visibleLabelsOf(ring).size(), n) << "new ones are shown";
}

TEST_F(RingInUse, a_resize_leaves_the_chart_as_large_as_it_is)
{
    show();
    ring.resize(300, 1000);
    EXPECT_EQ(chartOf(ring)->size(), QSizeF(660, 660));
    EXPECT_TRUE(ring.transform().isIdentity());
    EXPECT_EQ(visibleEdges(), allEdges);
}

TEST_F(RingInUse, a_resize_under_a_trigger_shows_no_label)
{
    ring.plotSlice(matrix(), 1, QVariantHash());
    ASSERT_EQ(labelsOf(ring).size(), n);
    show();
    EXPECT_EQ(labelsOf(ring).size(), n / 2);
    EXPECT_TRUE(visibleLabelsOf(ring).isEmpty());
    ring.resize(700, 700);
    EXPECT_EQ(labelsOf(ring).size(), n / 4);
    ring.resize(701, 701);
    EXPECT_TRUE(labelsOf(ring).isEmpty());
    ring.resize(702, 702);
    EXPECT_TRUE(labelsOf(ring).isEmpty());
    plot();
    EXPECT_EQ(visibleLabelsOf(ring).size(), n);
}

TEST_F(RingInUse, a_resize_under_another_kind_of_trigger_shows_the_labels)
{
    ring.plotSlice(matrix(), 2, QVariantHash());
    EXPECT_TRUE(visibleLabelsOf(ring).isEmpty());
    show();
    EXPECT_EQ(visibleLabelsOf(ring).size(), n);
}

TEST_F(RingInUse, the_wheel_does_nothing)
{
    show();
    ring.resize(300, 300); // smaller than the chart: there is something to scroll
    const QPointF centre = ring.mapToScene(ring.viewport()->rect().center());
    for (const Qt::KeyboardModifiers modifiers :
         {Qt::KeyboardModifiers(), Qt::KeyboardModifiers(Qt::ControlModifier)}) {
        QWheelEvent wheel(QPointF(150, 150), ring.mapToGlobal(QPoint(150, 150)), QPoint(),
                          QPoint(0, -120), Qt::NoButton, modifiers, Qt::NoScrollPhase, false);
        QApplication::sendEvent(ring.viewport(), &wheel);
    }
    EXPECT_EQ(ring.mapToScene(ring.viewport()->rect().center()), centre);
    EXPECT_TRUE(ring.transform().isIdentity());
}

TEST_F(RingInUse, paints_at_once_after_a_setting)
{
    show();
    QCoreApplication::processEvents();
    const std::function<void()> settings[] = {
        [&] { ring.setNodesSize(20); },        [&] { ring.setUseWeights(false); },
        [&] { ring.setFixedThickness(3.0f); }, [&] { ring.setThicknessMultiplier(2.0); },
        [&] { ring.setColorizeEdges(true); },  [&] { ring.setLabelsVisible(false); },
    };
    PaintCounter paints(ring);
    for (const auto &setting : settings) {
        const int before = paints.count;
        setting();
        EXPECT_GT(paints.count, before);
    }
}

TEST_F(RingInUse, looks_different_after_a_setting)
{
    ring.resize(700, 700);
    QImage last = ring.grab().toImage();
    const auto changed = [&] {
        const QImage now = ring.grab().toImage();
        const bool differs = now != last;
        last = now;
        return differs;
    };
    EXPECT_FALSE(changed());
    ring.setNodesSize(30);
    EXPECT_TRUE(changed());
    ring.setThicknessMultiplier(10.0);
    EXPECT_TRUE(changed());
    ring.setUseWeights(false);
    EXPECT_TRUE(changed());
    ring.setFixedThickness(8.0f);
    EXPECT_TRUE(changed());
    ring.setColorizeEdges(true);
    EXPECT_TRUE(changed());
    ring.setLabelsVisible(false);
    EXPECT_TRUE(changed());
    ring.setDisplayRange(0.3, 0.5);
    EXPECT_TRUE(changed());
}

} // namespace
