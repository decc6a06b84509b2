// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <Eigen/Core>
#include <QColor>
#include <QFont>
#include <QGraphicsView>
#include <QHash>
#include <QList>
#include <QMutex>
#include <QPen>
#include <QStringList>
#include <QVariant>
#include <QVector>
#include <QtCharts/QChart>
#include <QtCharts/QScatterSeries>
#include <QtCharts/QSplineSeries>

class MyGraphicsSimpleTextItem;
class QGraphicsSimpleTextItem;

/// Draws one connectivity matrix as a ring: each row is a node on a circle, each non-zero entry
/// above the diagonal a curved edge through the inside. Edges can be hovered for their value, names
/// of nodes for the edges of that node.
///
/// The state of an edge is kept on its series as dynamic properties, among them the range filter
/// ("filtered-out") and the pens that hovering and colouring restore. There is no other edge table.
class CircularPlotWidget : public QGraphicsView
{
    Q_OBJECT

public:
    explicit CircularPlotWidget(QWidget *parent = nullptr);
    ~CircularPlotWidget() override;

    /// Names of the nodes in the order of the matrix, for the slices drawn from now on.
    void setLabels(QStringList names);

    /// Draws one slice in place of the one before. Of type 0 it is drawn as a ring; any other type
    /// is a trigger, which shows a title only.
    ///
    /// `sliceDescription` holds a QVariantHash with the keys "mst" (`std::vector<int>`: the
    /// elements of the slice's spanning tree, non-zero where there is an edge, column by column;
    /// may be empty) and, for a trigger, "condition_str" (its name).
    void plotSlice(Eigen::MatrixXf slice, int type, QVariant sliceDescription);

    /// Hides the edges with a value up to `low` or from `high` on, for this slice.
    void setDisplayRange(double low, double high);
    /// Size of the node markers, for this slice.
    void setNodesSize(int size);
    /// Whether an edge's width is its value times the multiplier, or the fixed thickness.
    void setUseWeights(bool on);
    void setThicknessMultiplier(double multiplier);
    void setFixedThickness(float thickness);
    /// Whether edges outside of the spanning tree take the colour of their value. A new slice
    /// starts in the plain colour either way.
    void setColorizeEdges(bool on);
    void setLabelsVisible(bool on);

public slots:
    /// Shows only the edges of the node whose name sent this, or all again.
    void hoveringLabel(bool state);
    /// Highlights the edge that sent this and shows its value, or puts everything back.
    void highlightEdge(QPointF point, bool state);

protected:
    void wheelEvent(QWheelEvent *event) override; ///< nothing: the view does not scroll or zoom
    void resizeEvent(QResizeEvent *event) override;

private:
    void makeChart();
    void showTrigger(const QString &name);
    void setTree(const std::vector<int> &elements);
    bool treeConnects(int i, int j) const;

    void drawMatrix(const Eigen::MatrixXf &slice);
    void clearPlot();
    void buildLabels(const QSize &size);
    void rebuildLabels(const QSize &size);
    void buildEdges();
    void addEdge(int i, int j);
    void addNodes();
    void setAxis();

    void fadeEdges();
    void restoreEdges();
    void applyEdgeThickness();
    void applyEdgeColors();
    void redraw();

    QtCharts::QChart *chart;
    QtCharts::QScatterSeries *nodesSeries = nullptr; ///< null while no ring is shown
    QHash<int, QtCharts::QSplineSeries *> edgesByIndex;
    QList<QtCharts::QSplineSeries *> sortedEdges; ///< NaN first, then by value; equal ones as made
    QVector<MyGraphicsSimpleTextItem *> labelItems; ///< all that exist, also hidden ones
    QGraphicsSimpleTextItem *valueItem;
    QGraphicsSimpleTextItem *titleItem = nullptr; ///< made for the first trigger
    QStringList labels;
    quint32 nodeCount = 0;
    QVector<QPointF> nodePositions; ///< grows with each ring; only the first `nodeCount` are read
    QVector<double> nodeAngles;     ///< likewise
    Eigen::MatrixXf matrix;         ///< transpose of the slice
    Eigen::MatrixXi mstMatrix;
    bool hasMST = false;
    QFont spareFont; ///< used nowhere
    QFont labelFont;
    double markerSize = 10.0;
    QPen highlightPen;
    QPen defaultPen;
    QPen mstPen;
    QColor defaultColor;
    bool labelsVisible = true; ///< as last set; the labels of a new slice are visible regardless
    bool useWeights = true;
    float thicknessMultiplier = 5.0f;
    float fixedThickness = 1.0f;
    bool colorizeEdges = false;
    QMutex mutex; ///< held while a plot is rebuilt
    int conditionType = 0;
};
