// SPDX-License-Identifier: GPL-3.0-or-later
//
// The table of graph measures: what its buttons compute and plot.
#include "results/connectivity_object_ui.h"

#include "engine/connectivity_object.h"
#include "engine/graph_measures.h"
#include "plots/line_plot.h"
#include "plots/timeseries_line_plot.h"
#include "results/feature_plots.h"
#include "results/graph_features_model.h"
#include "results/wrapped_tool_tips.h"
#include "ui_connectivity_object_ui.h"

#include <QHeaderView>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>

namespace
{

constexpr Eigen::Index largestUnasked = 50; // rows of a matrix

const char *const rowProperty = "row";
const char *const measureProperty = "measure";
const char *const titleProperty = "win_title";

/// One value per matrix, each of them that of the first.
std::vector<float> valuesPerMatrix(const GraphMeasure &measure,
                                   const std::vector<Eigen::MatrixXf> &matrices)
{
    return std::vector<float>(matrices.size(), measure.perMatrix(matrices.front()));
}

GraphFeaturesModel *modelOf(const QTableView *view)
{
    return qobject_cast<GraphFeaturesModel *>(view->model());
}

/// Tab goes from the table through its buttons, row by row. They are made last of all widgets, and
/// would come behind everything else.
void orderTabs(QTableView *view)
{
    const QAbstractItemModel &model = *view->model();
    QWidget *before = view;
    for (int row = 0; row < model.rowCount(); ++row) {
        for (const int column :
             {GraphFeaturesModel::ComputeColumn, GraphFeaturesModel::ResultColumn}) {
            if (QWidget *const button = view->indexWidget(model.index(row, column))) {
                QWidget::setTabOrder(before, button);
                before = button;
            }
        }
    }
}

} // namespace

void ConnectivityObjectUI::prepareGraphFeatures()
{
    qRegisterMetaType<std::vector<float>>();
    qRegisterMetaType<FeatureValues>();
    ui->pb_ComputingGraphFeature->hide();

    QTableView *const view = ui->tblView_GraphFeatures;
    auto *const model = new GraphFeaturesModel(view);
    if (subject().useProtocol())
        model->setDynamic(true);
    view->setModel(model);
    view->hideColumn(GraphFeaturesModel::TypeColumn);
    view->setItemDelegateForColumn(GraphFeaturesModel::DescriptionColumn,
                                   new WrappedToolTips(view));

    const char *heading = "";
    for (const GraphMeasure &measure : graphMeasures()) {
        if (qstrcmp(heading, measure.heading) != 0) {
            heading = measure.heading;
            addFeatureHeading(tr(heading));
        }
        addFeatureRow(measure);
    }
    orderTabs(view);

    QHeaderView *const header = view->horizontalHeader();
    header->setSectionResizeMode(GraphFeaturesModel::TypeColumn, QHeaderView::ResizeToContents);
    header->setSectionResizeMode(GraphFeaturesModel::NameColumn, QHeaderView::ResizeToContents);
    header->setSectionResizeMode(GraphFeaturesModel::DescriptionColumn, QHeaderView::Stretch);
}

void ConnectivityObjectUI::addFeatureHeading(const QString &heading)
{
    QTableView *const view = ui->tblView_GraphFeatures;
    const int row = modelOf(view)->addFeature(heading, {}, {}, {}, true);
    view->setSpan(row, GraphFeaturesModel::NameColumn, 1, 4);
}

void ConnectivityObjectUI::addFeatureRow(const GraphMeasure &measure)
{
    const bool isScalar = measure.perNode == nullptr;
    const int row = modelOf(ui->tblView_GraphFeatures)
                        ->addFeature(tr(measure.heading), tr(measure.name), tr(measure.description),
                                     QLatin1String(measure.key), isScalar);
    const QPushButton *const compute =
        addFeatureButton(row, GraphFeaturesModel::ComputeColumn, tr("compute"), measure);
    connect(compute, &QPushButton::clicked, this, &ConnectivityObjectUI::computeGraphFeature);

    if (isScalar && !subject().useProtocol())
        return; // the table shows its number
    QPushButton *const inspect =
        addFeatureButton(row, GraphFeaturesModel::ResultColumn, tr("inspect"), measure);
    inspect->setEnabled(false);
    connect(inspect, &QPushButton::clicked, this, &ConnectivityObjectUI::inspectGraphFeature);
}

QPushButton *ConnectivityObjectUI::addFeatureButton(int row, int column, const QString &text,
                                                    const GraphMeasure &measure)
{
    auto *const button = new QPushButton(text);
    button->setFlat(true);
    button->setAutoDefault(false);
    button->setAccessibleName(text + ' ' + tr(measure.name));
    button->setProperty(rowProperty, row);
    button->setProperty(measureProperty, QString(QLatin1String(measure.key)));
    QTableView *const view = ui->tblView_GraphFeatures;
    view->setIndexWidget(view->model()->index(row, column), button);
    return button;
}

void ConnectivityObjectUI::computeGraphFeature(bool)
{
    const auto *const button = qobject_cast<QPushButton *>(sender());
    if (!button)
        return;
    const int row = button->property(rowProperty).toInt();
    const QString key = button->property(measureProperty).toString();
    const GraphMeasure *const measure = graphMeasure(key);
    const Matrices all = matrices();
    if (!measure || all.empty() || all.front().size() == 0)
        return; // nothing to compute
    if (!confirmComputing(*measure, all.front()))
        return;

    QVariant result;
    if (measure->perNode) {
        result = QVariant::fromValue(valuesPerNode(*measure, all));
    } else {
        const std::vector<float> values = valuesPerMatrix(*measure, all);
        result = values.size() == 1 ? QVariant(values.front())
                                    : QVariant::fromValue(FeatureValues{values});
    }
    GraphFeaturesModel *const model = modelOf(ui->tblView_GraphFeatures);
    model->setResult(model->featureIndex(key), result);
    if (result.userType() == qMetaTypeId<FeatureValues>())
        allowInspecting(row, *measure);
}

bool ConnectivityObjectUI::confirmComputing(const GraphMeasure &measure,
                                            const Eigen::MatrixXf &matrix)
{
    if (!measure.isLong || matrix.rows() <= largestUnasked)
        return true;
    QMessageBox question;
    question.setWindowTitle(tr("Caution."));
    question.setText(
        tr("The matrix is too big and the computation might take too long. Continue?"));
    question.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
    // It has no parent, but it goes with this dialog all the same.
    const QPointer<ConnectivityObjectUI> self(this);
    connect(this, &QObject::destroyed, &question, &QMessageBox::reject);
    return question.exec() == QMessageBox::Yes && self;
}

void ConnectivityObjectUI::allowInspecting(int row, const GraphMeasure &measure)
{
    const QTableView *const view = ui->tblView_GraphFeatures;
    QWidget *const button =
        view->indexWidget(view->model()->index(row, GraphFeaturesModel::ResultColumn));
    if (!button)
        return; // the subject had no protocol when the table was made
    button->setProperty(titleProperty, tr(measure.title));
    button->setEnabled(true);
}

void ConnectivityObjectUI::inspectGraphFeature(bool)
{
    const auto *const button = qobject_cast<QPushButton *>(sender());
    if (!button)
        return;
    const QString key = button->property(measureProperty).toString();
    const QString title = button->property(titleProperty).toString();
    GraphFeaturesModel *const model = modelOf(ui->tblView_GraphFeatures);
    const auto values = model->result(model->featureIndex(key)).value<FeatureValues>();
    if (model->feature(key).scalar) {
        const auto perSlice = values.empty() ? std::vector<float>() : values.front();
        plotPerSlice(title, perSlice, subject(), this)->showOnScreen();
    } else {
        plotPerNode(title, values, subject(), this)->show();
    }
}

void ConnectivityObjectUI::graphfeatures_useFilteredMatrix(bool) {}
