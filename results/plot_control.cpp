// SPDX-License-Identifier: GPL-3.0-or-later
//
// The circular plot with its options, and the matrix browser.
#include "results/connectivity_object_ui.h"

#include "dataset/subject.h"
#include "dataset/verbose_log.h"
#include "plots/bring_to_front.h"
#include "plots/circular_plot.h"
#include "plots/circular_plot_widget.h"
#include "plots/view_matrix.h"
#include "results/fitted_names.h"
#include "ui_connectivity_object_ui.h"

void ConnectivityObjectUI::plotCircular(bool)
{
    if (!connectivityObject)
        return;
    ui->groupbox_CircularPlot->setEnabled(true);
    if (circularPlot) {
        bringToFront(circularPlot);
        return;
    }
    circularPlot = new CircularPlot(this);
    circularPlot->setAttribute(Qt::WA_DeleteOnClose, false);
    connect(circularPlot, &CircularPlot::closingWindow, this,
            &ConnectivityObjectUI::circularPlot_disableOptions);
    connect(ui->widget_CircPlot_Spanner, &QxtSpanSlider::spanChanged, circularPlot,
            &CircularPlot::displayRangeChanged);
    connect(ui->widget_CircPlot_Spanner, &QxtSpanSlider::spanChanged, this,
            &ConnectivityObjectUI::circularPlot_displayRangeChanged);
    circularPlot->updateLabels();
    circularPlot->plotFirstSlice();
    bringToFront(circularPlot);
}

void ConnectivityObjectUI::circularPlot_disableOptions()
{
    ui->groupbox_CircularPlot->setEnabled(false);
}

void ConnectivityObjectUI::circularPlot_displayRangeChanged(int l, int u)
{
    ui->lbl_Spanner_Low->setText(QString::number(l / 1000.0, 'g', 6));
    ui->lbl_Spanner_Upper->setText(QString::number(u / 1000.0, 'g', 6));
}

void ConnectivityObjectUI::circularPlot_toggleLabels(bool state)
{
    if (circularPlot)
        circularPlot->plotWidget()->setLabelsVisible(state);
}

void ConnectivityObjectUI::circularPlot_setNodesSize(int value)
{
    if (circularPlot)
        circularPlot->plotWidget()->setNodesSize(value);
}

void ConnectivityObjectUI::circularPlot_toggleUseWeights(bool state)
{
    if (circularPlot)
        circularPlot->plotWidget()->setUseWeights(state);
}

void ConnectivityObjectUI::circularPlot_thicknessMultiplierChanged(double value)
{
    if (circularPlot)
        circularPlot->plotWidget()->setThicknessMultiplier(value);
}

void ConnectivityObjectUI::circularPlot_setFixedThickness(double value)
{
    if (circularPlot)
        circularPlot->plotWidget()->setFixedThickness(float(value));
}

void ConnectivityObjectUI::circularPlot_toggleColorizeEdges(bool state)
{
    if (circularPlot)
        circularPlot->plotWidget()->setColorizeEdges(state);
}

void ConnectivityObjectUI::plotConnectivityMatrix(bool)
{
    verboseLog("void __cdecl ConnectivityObjectUI::plotConnectivityMatrix(bool)");
    if (viewMatrix) {
        bringToFront(viewMatrix);
        return;
    }
    viewMatrix = new ViewMatrix(this);
    viewMatrix->setAttribute(Qt::WA_DeleteOnClose, false);
    if (subject().useProtocol()) {
        const QMap<int, QString> names = subject().protocol().volumeNames;
        const int slices = int(matrices().size());
        viewMatrix->setConditionNames(fittedNames(names.values(), slices));
        viewMatrix->setConditionTimes(names.keys().mid(0, slices));
    }
    viewMatrix->buildConditionList();
    viewMatrix->loadRange();
    viewMatrix->setLabels(subject().voiLabels(false));
    viewMatrix->fillTable();
    viewMatrix->paintTable();
    viewMatrix->drawOverview();
    viewMatrix->buildLegend();
    bringToFront(viewMatrix);
}
