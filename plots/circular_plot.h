// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMainWindow>
#include <QMutex>
#include <QPoint>
#include <QVariantHash>

#include <memory>

class CircularPlotWidget;
class ConnectivityObject;

namespace Ui
{
class CircularPlotWindow;
}

/// The window around a CircularPlotWidget: chooses the slice to draw with a slider below the ring,
/// and exports the ring as a picture. It reads everything through its parent, the results dialog,
/// lives as long as that, and is only hidden when it is closed.
class CircularPlot : public QMainWindow
{
    Q_OBJECT

public:
    /// `parent` is the results dialog. With another parent nothing is ever drawn.
    explicit CircularPlot(QWidget *parent);
    ~CircularPlot() override;

    CircularPlotWidget *plotWidget() const;
    /// Takes the names of the nodes from the subject.
    void updateLabels();
    void plotFirstSlice();

signals:
    void closingWindow();

public slots:
    /// Draws the slice of the slider that sent this.
    void valueChanged();
    /// Shows only the edges between two values, in thousandths.
    void displayRangeChanged(int l, int u);
    void showContextMenu(QPoint pos);
    void saveImage();

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    void setupConditionSlider();
    void plotSlice(const ConnectivityObject &object, int slice);

    QMutex mutex; ///< guards the slots that redraw against each other
    const std::unique_ptr<Ui::CircularPlotWindow> ui;
    CircularPlotWidget *const widget;
};

/// What the ring is told of a slice: "slice", its number, and "mst", the elements of its spanning
/// tree (`std::vector<int>`), with a protocol also "condition_str", its name, and "condition_type",
/// 0 for a block. Without a protocol there is no tree either.
QVariantHash sliceDescription(const ConnectivityObject &object, int slice);
