// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QtCharts/QBarSeries>
#include <QtCharts/QBarSet>
#include <QtCharts/QChart>
#include <QtCharts/QChartView>

/// View prepared for a histogram of matrix values. Nothing feeds it so far: its bar set of zeroes
/// belongs to no chart, and the view stays blank.
class Histogram : public QtCharts::QChartView
{
    Q_OBJECT

    using QBarSet = QtCharts::QBarSet; // the name that the bar series of Qt use in their signals

public:
    explicit Histogram(QWidget *parent = nullptr);
    ~Histogram() override;

signals:
    /// Value of the bar under the mouse. Not emitted so far.
    void barValue(QString value);

public slots:
    void barHovered(bool status, int index, QBarSet *barSet);

private:
    qint64 bins = 10;
    QtCharts::QChart *m_chart;
    QBarSet *barSet;
    QtCharts::QBarSeries *barSeries;
};
