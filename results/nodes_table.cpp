// SPDX-License-Identifier: GPL-3.0-or-later
#include "results/nodes_table.h"

#include "results/nodes_model.h"

#include <QCheckBox>
#include <QHeaderView>
#include <QTableView>

void fillNodesTable(QTableView *view, const QStringList &labels)
{
    auto *const model = new NodesModel(view);
    model->setLabels(labels);
    view->setModel(model);
    for (int row = 0; row < labels.size(); ++row) {
        auto *const box = new QCheckBox;
        box->setProperty("row", row);
        box->setChecked(true);
        box->setStyleSheet(QStringLiteral("margin-left:50%; margin-right:50%;"));
        view->setIndexWidget(model->index(row, NodesModel::InclusionColumn), box);
    }
    QHeaderView *const header = view->horizontalHeader();
    header->setSectionResizeMode(NodesModel::NodeColumn, QHeaderView::Stretch);
    header->setSectionResizeMode(NodesModel::InclusionColumn, QHeaderView::ResizeToContents);
}
