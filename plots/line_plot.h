// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
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
class LinePlot;
}

/// Window with one line per connectivity matrix and one point per node, and a legend with a check
/// box per line. With a protocol the lines of one condition share a colour and can be shown and
/// hidden together.
///
/// Filled once, in this order: `prepareChart`, `addSeries` for each line, `finishPlot`, and
/// `disableConditions` when there is no protocol.
class LinePlot : public QMainWindow
{
    Q_OBJECT

public:
    explicit LinePlot(QString title, QWidget *parent = nullptr);
    ~LinePlot() override;

    void prepareChart();

    /// Adds a line and its row in the legend. An empty name becomes "Series" with its number. A
    /// line of kind 1 belongs to a trigger: it is hidden at first, and its row reacts to nothing.
    void addSeries(std::vector<float> values, QString name, int kind);

    /// Sets the axes, the X axis with a label per node or, without labels, with numbers of voxels;
    /// with `conditions` gives each condition its colour and fills the choice of conditions.
    void finishPlot(QStringList labels, bool conditions);

    void disableConditions();

    /// Shows the window so large that the legend and the names on the X axis are seen whole.
    void showWhole();
    /// The chart, and where conditions tell its lines apart also the legend.
    QPixmap picture();

public slots:
    /// Fades all lines but the sender's, or brings all of them back.
    void highlightLineSeries(bool state);
    /// Shows or hides the sender's line.
    void toggleLineSeries(int state);
    void conditionsShow();
    void conditionsHide();
    /// `pos` is taken as a point of the window.
    void showContextMenu(QPoint pos);
    void saveImage();
    /// Writes the values of the first line as one row.
    void saveCSV();

private:
    void addLegendRow(int row, const QtCharts::QLineSeries &line, int kind);
    void setVoxelAxis();
    void colorConditions();
    void setConditionVisible(bool visible);
    /// Index of the line that the sending widget of the legend belongs to, -1 for any other sender.
    int senderRow() const;

    const std::unique_ptr<Ui::LinePlot> ui;
    QtCharts::QChart *chart = nullptr;
    QtCharts::QChartView *chartView = nullptr;
    QList<QtCharts::QLineSeries *> series; ///< in the order of `addSeries`
    QString title;
};
