// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMainWindow>
#include <QPixmap>
#include <QString>
#include <QStringList>
#include <QtCharts/QChart>
#include <QtCharts/QChartView>
#include <QtCharts/QLineSeries>

#include <memory>
#include <vector>

namespace Ui
{
class TimeseriesLineplot;
}

/// Window with a single line of one value per condition. Its legend is an empty frame, and its
/// chart has no context menu.
///
/// Filled once, in this order: `prepareChart`, `setSeries`, `finishPlot`.
class TimeseriesLinePlot : public QMainWindow
{
    Q_OBJECT

public:
    explicit TimeseriesLinePlot(QString title, QWidget *parent = nullptr);
    ~TimeseriesLinePlot() override;

    void prepareChart();
    void setSeries(std::vector<float> values, QString name);
    /// Sets the axes, the X axis with a name per value.
    void finishPlot(QStringList categories);

    /// Shows the window so large that the names on the X axis are seen whole.
    void showWhole();
    /// As showWhole, but no wider than the screen is. Up to the width at which the plot per node
    /// begins it grows on any screen.
    void showOnScreen();
    QPixmap picture(); ///< of the chart

private:
    const std::unique_ptr<Ui::TimeseriesLineplot> ui;
    QtCharts::QChart *chart = nullptr;
    QtCharts::QChartView *chartView = nullptr;
    QtCharts::QLineSeries *series = nullptr;
    QString title;
};
