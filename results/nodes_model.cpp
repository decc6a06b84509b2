// SPDX-License-Identifier: GPL-3.0-or-later
#include "results/nodes_model.h"

#include <utility>

NodesModel::NodesModel(QObject *parent)
    : QAbstractTableModel(parent), columns({tr("Node"), tr("Inclusion")})
{
}

NodesModel::~NodesModel() = default;

void NodesModel::setLabels(QStringList names)
{
    labels = std::move(names);
}

int NodesModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : labels.size();
}

int NodesModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : columns.size();
}

QVariant NodesModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return {};
    const bool isText = role == Qt::DisplayRole || role == Qt::EditRole;
    if (isText && index.column() == NodeColumn && index.row() < labels.size())
        return labels.at(index.row());
    if (role == Qt::TextAlignmentRole && index.column() == InclusionColumn)
        return int(Qt::AlignHCenter);
    return {};
}

bool NodesModel::setData(const QModelIndex &, const QVariant &, int)
{
    return true;
}

QVariant NodesModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section < 0 ||
        section >= columns.size())
        return {};
    return columns.at(section);
}

Qt::ItemFlags NodesModel::flags(const QModelIndex &index) const
{
    if (!index.isValid())
        return Qt::ItemIsEnabled;
    const Qt::ItemFlags base = QAbstractTableModel::flags(index);
    return index.column() == NodeColumn ? base | Qt::ItemIsEditable : base;
}
