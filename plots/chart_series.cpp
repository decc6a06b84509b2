// SPDX-License-Identifier: GPL-3.0-or-later
#include "plots/chart_series.h"

#include <QMetaMethod>

using namespace QtCharts;

namespace
{

/// The child of that class, null if there is none. The library does not declare its classes.
QObject *partOf(const QChart &chart, const char *className)
{
    for (QObject *part : chart.children()) {
        if (qstrcmp(part->metaObject()->className(), className) == 0)
            return part;
    }
    return nullptr;
}

QMetaMethod methodOf(const QObject &object, const char *signature)
{
    const QMetaObject *const meta = object.metaObject();
    return meta->method(meta->indexOfMethod(signature));
}

} // namespace

void connectDrawingAlone(QChart *chart)
{
    const QObject *const dataSet = partOf(*chart, "QtCharts::ChartDataSet");
    const QObject *const presenter = partOf(*chart, "QtCharts::ChartPresenter");
    if (!dataSet || !presenter)
        return;
    const QMetaMethod added = methodOf(*dataSet, "seriesAdded(QAbstractSeries*)");
    const QMetaMethod removed = methodOf(*dataSet, "seriesRemoved(QAbstractSeries*)");
    const QMetaMethod draw = methodOf(*presenter, "handleSeriesAdded(QAbstractSeries*)");
    const QMetaMethod drop = methodOf(*presenter, "handleSeriesRemoved(QAbstractSeries*)");
    if (!added.isValid() || !removed.isValid() || !draw.isValid() || !drop.isValid())
        return;

    QObject::disconnect(dataSet, added, nullptr, QMetaMethod());
    QObject::disconnect(dataSet, removed, nullptr, QMetaMethod());
    QObject::connect(dataSet, added, presenter, draw);
    QObject::connect(dataSet, removed, presenter, drop);
}

void addToSquare(QChart *chart, QXYSeries *series, double length)
{
    // A series without axes keeps the range of the points with which it comes.
    const QVector<QPointF> points = series->pointsVector();
    series->replace(QVector<QPointF>{QPointF(0.0, 0.0), QPointF(length, length)});
    chart->addSeries(series);
    series->replace(points);
}
