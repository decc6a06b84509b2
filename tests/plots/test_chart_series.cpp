// SPDX-License-Identifier: GPL-3.0-or-later
#include "plots/chart_series.h"
#include "tests/gui_test.h"
#include "tests/plots/plot_fixture.h"

#include <QCoreApplication>
#include <QtCharts/QLegend>
#include <QtCharts/QLegendMarker>
#include <QtCharts/QLineSeries>

using namespace QtCharts;

namespace
{

TEST(DrawingAlone, is_told_of_series)
{
    QChart chart;
    connectDrawingAlone(&chart);
    EXPECT_EQ(receiversOf(*dataSetOf(chart), SIGNAL(seriesAdded(QAbstractSeries *))), 1);
    EXPECT_EQ(receiversOf(*dataSetOf(chart), SIGNAL(seriesRemoved(QAbstractSeries *))), 1);

    // What is drawn goes with its series, and the legend knows of neither.
    const int itemsBefore = chart.childItems().size();
    auto *const line = new QLineSeries;
    line->append(0, 0);
    chart.addSeries(line);
    EXPECT_EQ(chart.childItems().size(), itemsBefore + 1);
    EXPECT_TRUE(chart.legend()->markers().isEmpty());
    chart.removeAllSeries();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(chart.childItems().size(), itemsBefore);
}

TEST(DrawingAlone, leaves_the_other_connections)
{
    QChart chart;
    QObject *const dataSet = dataSetOf(chart);
    const int axisAdded = receiversOf(*dataSet, SIGNAL(axisAdded(QAbstractAxis *)));
    const int axisRemoved = receiversOf(*dataSet, SIGNAL(axisRemoved(QAbstractAxis *)));
    connectDrawingAlone(&chart);
    EXPECT_EQ(receiversOf(*dataSet, SIGNAL(axisAdded(QAbstractAxis *))), axisAdded);
    EXPECT_EQ(receiversOf(*dataSet, SIGNAL(axisRemoved(QAbstractAxis *))), axisRemoved);
}

TEST(DrawingAlone, leaves_a_chart_of_other_parts_as_it_is)
{
    for (const char *missing : {"QtCharts::ChartDataSet", "QtCharts::ChartPresenter"}) {
        QChart chart;
        QObject *const dataSet = dataSetOf(chart);
        const int before = receiversOf(*dataSet, SIGNAL(seriesAdded(QAbstractSeries *)));
        ASSERT_GT(before, 1);
        QObject *hidden = nullptr;
        for (QObject *part : chart.children()) {
            if (part->inherits(missing))
                hidden = part;
        }
        ASSERT_NE(hidden, nullptr);
        hidden->setParent(nullptr);
        connectDrawingAlone(&chart);
        EXPECT_EQ(receiversOf(*dataSet, SIGNAL(seriesAdded(QAbstractSeries *))), before);
        EXPECT_EQ(receiversOf(*dataSet, SIGNAL(seriesRemoved(QAbstractSeries *))), before);
        hidden->setParent(&chart);
    }
}

TEST(SeriesInASquare, has_its_points_and_the_range_of_the_square)
{
    QChart chart;
    chart.resize(300, 200);
    for (const QVector<QPointF> &points : {QVector<QPointF>{{1, 2}, {300, 900}, {-5, 3}},
                                           QVector<QPointF>{{7, 7}}, QVector<QPointF>{}}) {
        auto *const line = new QLineSeries;
        line->replace(points);
        addToSquare(&chart, line, 640.0);
        EXPECT_EQ(line->pointsVector(), points);
        EXPECT_EQ(line->chart(), &chart);
        EXPECT_TRUE(line->attachedAxes().isEmpty());
        EXPECT_EQ(chart.mapToPosition({0, 0}, line), chart.plotArea().bottomLeft());
        EXPECT_EQ(chart.mapToPosition({640, 640}, line), chart.plotArea().topRight());
    }
    EXPECT_TRUE(chart.axes().isEmpty());
}

} // namespace
