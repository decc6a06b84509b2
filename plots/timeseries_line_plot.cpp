// SPDX-License-Identifier: GPL-3.0-or-later
#include "plots/timeseries_line_plot.h"

#include "dataset/plugin_settings.h"
#include "plots/line_chart.h"
#include "ui_timeseries_line_plot.h"

#include <QDebug>
#include <QScreen>
#include <QtCharts/QLegend>

using namespace QtCharts;

TimeseriesLinePlot::TimeseriesLinePlot(QString plotTitle, QWidget *parent)
    : QMainWindow(parent, Qt::Window | Qt::WindowMaximizeButtonHint | Qt::WindowCloseButtonHint),
      ui(std::make_unique<Ui::TimeseriesLineplot>()), title(std::move(plotTitle))
{
    ui->setupUi(this);
}

TimeseriesLinePlot::~TimeseriesLinePlot() = default;

void TimeseriesLinePlot::prepareChart()
{
    chart = makeLineChart(title);
    chartView = makeLineChartView(chart, this);
    ui->horizontalLayout->addWidget(chartView);
}

void TimeseriesLinePlot::setSeries(std::vector<float> values, QString name)
{
    series = makeLine(values, name);
    chart->addSeries(series);
}

void TimeseriesLinePlot::finishPlot(QStringList categories)
{
    chart->createDefaultAxes();
    chart->legend()->hide();
    if (PluginSettings::instance()->verboseLogging)
        qDebug() << categories;
    setCategoryAxis(chart, categories, QStringLiteral("Conditions"), false);
    setValueTitle(chart, windowTitle());
    chartView->update();
}

void TimeseriesLinePlot::showWhole()
{
    show();
    makeRoomForNames(this, *chart, widestPicture);
}

void TimeseriesLinePlot::showOnScreen()
{
    constexpr int anyScreen = 1114; // the plot per node begins with that
    show();
    makeRoomForNames(this, *chart, qMax(screen()->availableGeometry().width(), anyScreen));
}

QPixmap TimeseriesLinePlot::picture()
{
    return chartView->grab();
}
