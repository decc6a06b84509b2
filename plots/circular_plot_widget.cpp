// SPDX-License-Identifier: GPL-3.0-or-later
#include "plots/circular_plot_widget.h"

#include "plots/chart_series.h"
#include "plots/color_map.h"
#include "plots/my_graphics_simple_text_item.h"
#include "plots/plot_source.h"
#include "plots/ring_geometry.h"

#include <QGraphicsLayout>
#include <QGraphicsScene>
#include <QGraphicsSimpleTextItem>
#include <QMutexLocker>
#include <QtCharts/QAbstractAxis>
#include <QtCharts/QCategoryAxis>
#include <QtCharts/QLegend>

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

using namespace QtCharts;

namespace
{

constexpr int chartLength = 660;
constexpr int triggerWithoutLabels = 1; // the event type of a protocol
constexpr int hoverAlpha = 10;          // of the edges that are not hovered
constexpr double maximumPenWidth = 32767.0;

const QLatin1String fontFamily("Arial");

// Dynamic properties of an edge series.
const char *const valueProperty = "value";
const char *const penWidthProperty = "pen-width";
const char *const mapColorProperty = "cmap-color";
const char *const defaultColorProperty = "default-color";
const char *const penProperty = "pen";
const char *const originalPenProperty = "original-pen";
const char *const fadeinPenProperty = "fadein-pen";
const char *const indexProperty = "index"; // also of a label: the node that it names
const char *const fromProperty = "emitting-from";
const char *const toProperty = "emitting-to";
const char *const treeProperty = "mst_sig";
const char *const filteredProperty = "filtered-out";

bool isInTree(const QSplineSeries *edge)
{
    return edge->property(treeProperty).toBool();
}

bool isFilteredOut(const QSplineSeries *edge)
{
    return edge->property(filteredProperty).toBool();
}

/// Sets an edge's pen and the property that mirrors it.
void setEdgePen(QSplineSeries *edge, const QPen &pen)
{
    edge->setPen(pen);
    edge->setProperty(penProperty, pen);
}

void setEdgeColor(QSplineSeries *edge, const QColor &color)
{
    QPen pen = edge->pen();
    pen.setColor(color);
    setEdgePen(edge, pen);
}

/// Sets the width without its fraction. A pen keeps its width where that is none for a pen.
void setPenWidth(QPen &pen, double width)
{
    const double whole = std::trunc(width);
    if (whole >= 0.0 && whole <= maximumPenWidth)
        pen.setWidth(int(whole));
}

/// An edge with its value at hand, which is slow to look up on the series for each comparison.
struct RankedEdge {
    double value;
    QSplineSeries *edge;
};

/// NaN first, then by value.
bool edgeValueLess(const RankedEdge &left, const RankedEdge &right)
{
    const bool leftIsNumber = !std::isnan(left.value);
    const bool rightIsNumber = !std::isnan(right.value);
    return leftIsNumber == rightIsNumber ? left.value < right.value : rightIsNumber;
}

} // namespace

CircularPlotWidget::CircularPlotWidget(QWidget *parent) : QGraphicsView(parent)
{
    setScene(new QGraphicsScene(this));
    // All of it belongs to one item, the chart, which needs no index to be found.
    scene()->setItemIndexMethod(QGraphicsScene::NoIndex);
    setAccessibleName(tr("Circular plot"));
    setRenderHint(QPainter::Antialiasing, true);
    setDragMode(QGraphicsView::NoDrag);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);

    spareFont = QFont(fontFamily, 28);
    labelFont = QFont(fontFamily, 10);
    defaultColor = QColor(0, 0, 0, 30);
    highlightPen = QPen(Qt::blue);
    defaultPen = QPen(defaultColor);
    mstPen = QPen(Qt::red);

    makeChart();
    setAttribute(Qt::WA_MouseTracking);
}

CircularPlotWidget::~CircularPlotWidget()
{
    clearPlot(); // faster than what the scene would do
}

void CircularPlotWidget::makeChart()
{
    chart = new QChart;
    connectDrawingAlone(chart);
    chart->legend()->hide();
    chart->layout()->setContentsMargins(0, 0, 0, 0);
    chart->setMargins(QMargins());
    chart->setBackgroundRoundness(0);
    chart->setAcceptHoverEvents(true);
    scene()->addItem(chart);
    chart->layout()->setPreferredSize(chartLength, chartLength);
    chart->resize(chartLength, chartLength);

    valueItem = new QGraphicsSimpleTextItem(chart);
    valueItem->setFont(QFont(fontFamily, 10, QFont::Bold));
}

void CircularPlotWidget::setLabels(QStringList names)
{
    labels = std::move(names);
}

void CircularPlotWidget::plotSlice(Eigen::MatrixXf slice, int type, QVariant sliceDescription)
{
    const QVariantHash description = sliceDescription.toHash();
    hasMST = false;
    conditionType = type;
    if (type != 0) {
        showTrigger(description.value(QStringLiteral("condition_str")).toString());
        return;
    }
    if (titleItem)
        titleItem->hide();
    setTree(description.value(QStringLiteral("mst")).value<std::vector<int>>());
    drawMatrix(slice);
}

void CircularPlotWidget::showTrigger(const QString &name)
{
    const QMutexLocker lock(&mutex);
    clearPlot();
    if (!titleItem)
        titleItem = new QGraphicsSimpleTextItem(chart);
    titleItem->setFont(QFont(fontFamily, 14));
    titleItem->setText(QStringLiteral("Trigger \"%1\"").arg(name));
    titleItem->setPos(chart->size().width() / 2, chart->size().height() / 2);
    titleItem->show();
}

void CircularPlotWidget::setTree(const std::vector<int> &elements)
{
    if (elements.empty())
        return;
    hasMST = true;
    const auto n = Eigen::Index(std::sqrt(double(elements.size())));
    mstMatrix = Eigen::Map<const Eigen::MatrixXi>(elements.data(), n, n);
}

void CircularPlotWidget::drawMatrix(const Eigen::MatrixXf &slice)
{
    const QMutexLocker lock(&mutex);
    clearPlot();
    matrix = slice.transpose();
    nodeCount = quint32(slice.cols());

    // What earlier rings appended stays in front: slices have one size, so that it is the same.
    const Ring ring = makeRing(nodeCount);
    nodeAngles += ring.angles;
    nodePositions += ring.positions;

    buildLabels(chart->size().toSize());
    buildEdges();
    for (QSplineSeries *edge : qAsConst(sortedEdges)) {
        addToSquare(chart, edge, ringAxisLength);
        connect(edge, &QSplineSeries::hovered, this, &CircularPlotWidget::highlightEdge);
    }
    addNodes();
    setAxis();
}

void CircularPlotWidget::clearPlot()
{
    for (MyGraphicsSimpleTextItem *label : qAsConst(labelItems))
        label->setVisible(false);
    edgesByIndex.clear();
    sortedEdges.clear();
    chart->removeAllSeries(); // which deletes them
    nodesSeries = nullptr;
}

void CircularPlotWidget::buildLabels(const QSize &size)
{
    if (conditionType == triggerWithoutLabels)
        return;
    const int n = int(nodeCount);
    for (int k = 0; k < n; ++k) {
        auto *label = new MyGraphicsSimpleTextItem(chart);
        connect(label, &MyGraphicsSimpleTextItem::hovering, this,
                &CircularPlotWidget::hoveringLabel);
        const int node = mirroredNode(k, n);
        label->setProperty(indexProperty, node);
        label->setPlainText(nameAt(labels, node));
        label->setFont(labelFont);

        const LabelPlacement placement = placeLabel(nodeAngles[k], nodePositions[k], size);
        label->setRotation(placement.rotation);
        label->setPos(placement.position);
        label->setVisible(true);
        labelItems.append(label);
    }
}

void CircularPlotWidget::rebuildLabels(const QSize &size)
{
    // The list shrinks under the index, so that every second label stays.
    for (int index = 0; index < labelItems.size(); ++index)
        delete labelItems.takeAt(index);
    buildLabels(size);
}

void CircularPlotWidget::buildEdges()
{
    const Eigen::Index n = std::min(matrix.rows(), matrix.cols());
    for (int i = 0; i < n; ++i) {
        for (int j = i + 1; j < n; ++j) {
            if (matrix(j, i) != 0.0f)
                addEdge(i, j);
        }
    }
    std::vector<RankedEdge> ranked;
    for (int index = 0; index < edgesByIndex.size(); ++index) {
        QSplineSeries *const edge = edgesByIndex.value(index);
        ranked.push_back({edge->property(valueProperty).toReal(), edge});
    }
    std::stable_sort(ranked.begin(), ranked.end(), edgeValueLess);
    for (const RankedEdge &next : ranked)
        sortedEdges.append(next.edge);
}

bool CircularPlotWidget::treeConnects(int i, int j) const
{
    return hasMST && i < mstMatrix.rows() && j < mstMatrix.cols() && mstMatrix(i, j) != 0;
}

void CircularPlotWidget::addEdge(int i, int j)
{
    const double value = double(matrix(j, i));
    const double width = double(thicknessMultiplier) * value;
    const bool inTree = treeConnects(i, j);
    QPen pen = inTree ? mstPen : defaultPen;
    if (useWeights)
        setPenWidth(pen, width);

    auto *edge = new QSplineSeries;
    edge->setPen(pen);
    edge->append(nodePositions[j]);
    edge->append(edgeControlPoint(nodePositions[j], nodePositions[i]));
    edge->append(nodePositions[i]);

    const int index = edgesByIndex.size();
    edge->setProperty(valueProperty, value);
    edge->setProperty(penWidthProperty, width);
    edge->setProperty(mapColorProperty, valueToColor(value));
    edge->setProperty(defaultColorProperty, defaultColor);
    edge->setProperty(penProperty, pen);
    edge->setProperty(originalPenProperty, pen);
    edge->setProperty(fadeinPenProperty, pen);
    edge->setProperty(indexProperty, index);
    edge->setProperty(fromProperty, j);
    edge->setProperty(toProperty, i);
    if (inTree)
        edge->setProperty(treeProperty, true);
    edgesByIndex.insert(index, edge);
}

void CircularPlotWidget::addNodes()
{
    nodesSeries = new QScatterSeries;
    nodesSeries->setColor(Qt::black);
    nodesSeries->setBorderColor(Qt::white);
    nodesSeries->setMarkerSize(markerSize);
    for (int k = 0; k < int(nodeCount); ++k)
        nodesSeries->append(nodePositions[k]);
    addToSquare(chart, nodesSeries, ringAxisLength);
}

void CircularPlotWidget::setAxis()
{
    for (QAbstractAxis *old : chart->axes()) {
        chart->removeAxis(old);
        delete old;
    }
    auto *axis = new QCategoryAxis; // without categories
    axis->setGridLineVisible(false);
    chart->addAxis(axis, Qt::AlignBottom);
    chart->layout()->activate(); // or a first picture would be painted before it, and a second one
}

void CircularPlotWidget::wheelEvent(QWheelEvent *) {}

void CircularPlotWidget::resizeEvent(QResizeEvent *event)
{
    rebuildLabels(chart->size().toSize());
    QGraphicsView::resizeEvent(event);
}

void CircularPlotWidget::highlightEdge(QPointF, bool state)
{
    auto *edge = qobject_cast<QSplineSeries *>(sender());
    if (!edge || !edge->isVisible())
        return;
    const float width = edge->property(penWidthProperty).toFloat();
    const float value = edge->property(valueProperty).toFloat();
    if (std::isnan(value))
        return;

    valueItem->setText(QString::number(double(value), 'g', 6));
    valueItem->setPos(chart->mapToPosition(edge->at(1)));
    if (state) {
        QPen pen = highlightPen;
        setPenWidth(pen, double(width));
        fadeEdges();
        if (!isInTree(edge))
            setEdgePen(edge, pen);
        valueItem->show();
    } else {
        restoreEdges();
        edge->setPointLabelsVisible(false);
        valueItem->hide();
    }
}

void CircularPlotWidget::fadeEdges()
{
    for (QSplineSeries *edge : qAsConst(sortedEdges)) {
        if (isInTree(edge))
            continue;
        edge->setProperty(fadeinPenProperty, edge->pen());
        setEdgeColor(edge, QColor(0, 0, 0, hoverAlpha));
    }
}

void CircularPlotWidget::restoreEdges()
{
    for (QSplineSeries *edge : qAsConst(sortedEdges)) {
        if (!isInTree(edge))
            setEdgePen(edge, edge->property(fadeinPenProperty).value<QPen>());
    }
    if (colorizeEdges)
        applyEdgeColors();
}

void CircularPlotWidget::hoveringLabel(bool state)
{
    auto *label = qobject_cast<MyGraphicsSimpleTextItem *>(sender());
    if (!label)
        return;
    const int node = label->property(indexProperty).toInt();
    for (QSplineSeries *edge : qAsConst(sortedEdges)) {
        if (isFilteredOut(edge))
            continue;
        const bool ofNode = edge->property(fromProperty).toInt() == node ||
                            edge->property(toProperty).toInt() == node;
        if (!state)
            edge->setVisible(true);
        else if (!ofNode)
            edge->setVisible(false);
    }
}

void CircularPlotWidget::setDisplayRange(double low, double high)
{
    for (QSplineSeries *edge : qAsConst(sortedEdges)) {
        const double value = edge->property(valueProperty).toReal();
        const bool outside = value <= low || value >= high;
        edge->setVisible(!outside);
        edge->setProperty(filteredProperty, outside);
    }
}

void CircularPlotWidget::setNodesSize(int size)
{
    if (nodesSeries)
        nodesSeries->setMarkerSize(size);
    redraw();
}

void CircularPlotWidget::setUseWeights(bool on)
{
    useWeights = on;
    applyEdgeThickness();
    redraw();
}

void CircularPlotWidget::setThicknessMultiplier(double multiplier)
{
    thicknessMultiplier = float(multiplier);
    applyEdgeThickness();
    redraw();
}

void CircularPlotWidget::setFixedThickness(float thickness)
{
    fixedThickness = thickness;
    applyEdgeThickness();
    redraw();
}

void CircularPlotWidget::setColorizeEdges(bool on)
{
    colorizeEdges = on;
    applyEdgeColors();
    redraw();
}

void CircularPlotWidget::setLabelsVisible(bool on)
{
    labelsVisible = on;
    for (MyGraphicsSimpleTextItem *label : qAsConst(labelItems))
        label->setVisible(on);
    redraw();
}

void CircularPlotWidget::applyEdgeThickness()
{
    for (QSplineSeries *edge : qAsConst(sortedEdges)) {
        const double width =
            useWeights ? double(thicknessMultiplier) * edge->property(valueProperty).toReal()
                       : double(fixedThickness);
        QPen pen = edge->pen();
        setPenWidth(pen, width);
        setEdgePen(edge, pen);
        edge->setProperty(penWidthProperty, width);
    }
}

void CircularPlotWidget::applyEdgeColors()
{
    const char *const colorProperty = colorizeEdges ? mapColorProperty : defaultColorProperty;
    for (QSplineSeries *edge : qAsConst(sortedEdges)) {
        if (!isInTree(edge))
            setEdgeColor(edge, edge->property(colorProperty).value<QColor>());
    }
}

void CircularPlotWidget::redraw()
{
    update();
    repaint();
}
