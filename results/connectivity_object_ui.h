// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <Eigen/Core>
#include <QDialog>

#include <memory>
#include <vector>

class CircularPlot;
class ConnectivityObject;
class QPushButton;
class Subject;
class ViewMatrix;
struct GraphMeasure;

namespace Ui
{
class ConnectivityObjectUI;
}

/// The results window of one subject: opens the matrix browser and the circular plot and passes the
/// display options on to the latter, computes and plots graph measures, and exports time series and
/// matrices. It computes nothing itself.
///
/// Every window that it opens is its child, and dies with it when it is closed. Its slots are
/// written in several files: `graph_features.cpp`, `plot_control.cpp`, `data_export.cpp`.
class ConnectivityObjectUI : public QDialog
{
    Q_OBJECT

public:
    /// Shows `object`, which is not owned and outlives the dialog.
    ConnectivityObjectUI(ConnectivityObject *object, QWidget *parent);
    ~ConnectivityObjectUI() override;

    ConnectivityObject *connectivityObject;

public slots:
    // The tables
    void prepareNodesTable();
    void prepareGraphFeatures();
    /// Plots the stored result of the measure of the button that sent this.
    void inspectGraphFeature(bool state);
    /// Computes the measure of the button that sent this, for every matrix.
    void computeGraphFeature(bool state);
    void graphfeatures_useFilteredMatrix(bool state);

    // The plots
    void plotConnectivityMatrix(bool state);
    void plotCircular(bool state);
    void circularPlot_disableOptions();
    void circularPlot_displayRangeChanged(int l, int u);
    void circularPlot_toggleLabels(bool state);
    void circularPlot_setNodesSize(int value);
    void circularPlot_toggleUseWeights(bool state);
    void circularPlot_thicknessMultiplierChanged(double value);
    void circularPlot_setFixedThickness(double value);
    void circularPlot_toggleColorizeEdges(bool state);

    // The exports
    void data_exportTimeseries();
    void data_exportConnectivityMatrix();
    /// Asks for a name and writes nothing.
    void data_exportMSTMatrix();

private:
    using Matrices = std::vector<Eigen::MatrixXf>;

    /// The record shown, or an empty one.
    const Subject &subject() const;
    Matrices matrices() const;

    void addFeatureHeading(const QString &heading);
    void addFeatureRow(const GraphMeasure &measure);
    QPushButton *addFeatureButton(int row, int column, const QString &text,
                                  const GraphMeasure &measure);
    /// True unless the user, asked about a long measure on a large matrix, declines. Also false
    /// when the dialog is gone then.
    bool confirmComputing(const GraphMeasure &measure, const Eigen::MatrixXf &matrix);
    void allowInspecting(int row, const GraphMeasure &measure);

    const std::unique_ptr<Ui::ConnectivityObjectUI> ui;
    CircularPlot *circularPlot = nullptr; ///< made once, then shown again
    ViewMatrix *viewMatrix = nullptr;     ///< likewise
};
