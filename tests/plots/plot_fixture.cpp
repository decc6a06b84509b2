// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/plots/plot_fixture.h"

#include <QFile>
#include <QGraphicsScene>

using namespace QtCharts;

namespace
{

/// The children of the chart of one class, in the order in which they were made.
template <typename Item>
QVector<Item *> childrenOfChart(const CircularPlotWidget &ring)
{
    QVector<Item *> found;
    for (QGraphicsItem *child : chartOf(ring)->childItems()) {
        if (auto *item = dynamic_cast<Item *>(child))
            found.append(item);
    }
    return found;
}

} // namespace

Eigen::MatrixXf realMatrix(int n)
{
    QFile file(QString::fromUtf8(referenceFolder()) +
               QStringLiteral("/graphs/real_haxby_brain_abs.matrix.csv"));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    Eigen::MatrixXf matrix(n, n);
    for (int row = 0; row < n; ++row) {
        const QList<QByteArray> entries = file.readLine().split(',');
        for (int column = 0; column < n; ++column)
            matrix(row, column) = entries.at(column).trimmed().toFloat();
    }
    return matrix;
}

QStringList nodeNames(int n)
{
    QStringList names;
    for (int i = 0; i < n; ++i)
        names += QStringLiteral("Node %1").arg(i);
    return names;
}

Result::Result(const std::vector<Eigen::MatrixXf> &matrices, const QVector<SliceOfProtocol> &slices,
               bool useProtocol)
    : subject(QSharedPointer<Subject>::create())
{
    SubjectProtocol protocol(QStringLiteral("Protocol"), 1, slices.size());
    for (const SliceOfProtocol &slice : slices) {
        protocol.volumeNames.insert(slice.start, slice.name);
        protocol.volumeEvents.insert(slice.start, slice.isEvent);
    }
    subject->setProtocol(protocol);
    subject->setUseProtocol(useProtocol && !slices.isEmpty());
    if (!matrices.empty())
        subject->voiNames = nodeNames(int(matrices.front().rows()));
    object.setSubject(subject);
    object.setMatrices(matrices);
}

QChart *chartOf(const CircularPlotWidget &ring)
{
    for (QGraphicsItem *item : ring.scene()->items()) {
        if (auto *chart = dynamic_cast<QChart *>(item))
            return chart;
    }
    return nullptr;
}

QList<QSplineSeries *> edgesOf(const CircularPlotWidget &ring)
{
    QList<QSplineSeries *> edges;
    for (QAbstractSeries *series : chartOf(ring)->series()) {
        if (auto *edge = qobject_cast<QSplineSeries *>(series))
            edges.append(edge);
    }
    return edges;
}

QSplineSeries *edgeBetween(const CircularPlotWidget &ring, int one, int other)
{
    for (QSplineSeries *edge : edgesOf(ring)) {
        if (edge->property("emitting-from").toInt() == qMax(one, other) &&
            edge->property("emitting-to").toInt() == qMin(one, other))
            return edge;
    }
    return nullptr;
}

QScatterSeries *nodesOf(const CircularPlotWidget &ring)
{
    for (QAbstractSeries *series : chartOf(ring)->series()) {
        if (auto *nodes = qobject_cast<QScatterSeries *>(series))
            return nodes;
    }
    return nullptr;
}

QVector<MyGraphicsSimpleTextItem *> labelsOf(const CircularPlotWidget &ring)
{
    return childrenOfChart<MyGraphicsSimpleTextItem>(ring);
}

QVector<MyGraphicsSimpleTextItem *> visibleLabelsOf(const CircularPlotWidget &ring)
{
    QVector<MyGraphicsSimpleTextItem *> visible;
    for (MyGraphicsSimpleTextItem *label : labelsOf(ring)) {
        if (label->isVisibleTo(chartOf(ring)))
            visible.append(label);
    }
    return visible;
}

QGraphicsSimpleTextItem *valueItemOf(const CircularPlotWidget &ring)
{
    return childrenOfChart<QGraphicsSimpleTextItem>(ring).value(0);
}

QGraphicsSimpleTextItem *titleItemOf(const CircularPlotWidget &ring)
{
    return childrenOfChart<QGraphicsSimpleTextItem>(ring).value(1);
}

QObject *dataSetOf(const QChart &chart)
{
    for (QObject *part : chart.children()) {
        if (part->inherits("QtCharts::ChartDataSet"))
            return part;
    }
    return nullptr;
}

int receiversOf(const QObject &object, const char *signal)
{
    struct Inside : QObject {
        using Count = int (QObject::*)(const char *) const;
        static Count count() { return &Inside::receivers; }
    };
    return (object.*Inside::count())(signal);
}
