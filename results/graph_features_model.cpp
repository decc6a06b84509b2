// SPDX-License-Identifier: GPL-3.0-or-later
#include "results/graph_features_model.h"

#include <QFont>

#include <iterator>

GraphFeaturesModel::GraphFeaturesModel(QObject *parent)
    : QAbstractTableModel(parent),
      columns({tr("Type"), tr("Name"), tr("Description"), QString(), tr("Result")})
{
}

GraphFeaturesModel::~GraphFeaturesModel() = default;

int GraphFeaturesModel::addFeature(QString type, QString name, QString description, QString key,
                                   bool scalar)
{
    const int row = rowTotal;
    const bool isHeading = name.isEmpty() && description.isEmpty() && key.isEmpty();
    beginInsertRows({}, row, row);
    if (isHeading) {
        rowKeys.append(type);
        headingRows.append(row);
    } else {
        features.insert(key, {type, name, description, key, scalar});
        rowKeys.append(key);
        ++featureCount;
    }
    ++rowTotal;
    endInsertRows();
    emit layoutChanged();
    return row;
}

FeatureRow GraphFeaturesModel::feature(QString key) const
{
    return features.value(key);
}

int GraphFeaturesModel::featureIndex(QString key) const
{
    return int(std::distance(features.cbegin(), features.constFind(key)));
}

QVariant GraphFeaturesModel::result(int index)
{
    return results[index];
}

void GraphFeaturesModel::setResult(int index, QVariant value)
{
    results.insert(index, value);
    emit layoutChanged();
}

void GraphFeaturesModel::setDynamic(bool on)
{
    dynamic = on;
}

int GraphFeaturesModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : rowKeys.size();
}

int GraphFeaturesModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : columns.size();
}

QVariant GraphFeaturesModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= rowKeys.size())
        return {};
    const QString &key = rowKeys[index.row()];
    return headingRows.contains(index.row()) ? headingData(key, index.column(), role)
                                             : measureData(feature(key), index.column(), role);
}

QVariant GraphFeaturesModel::headingData(const QString &heading, int column, int role) const
{
    if (column != NameColumn)
        return {};
    switch (role) {
    case Qt::DisplayRole:
    case Qt::ToolTipRole:
    case Qt::WhatsThisRole:
        return heading;
    case Qt::FontRole: {
        QFont font;
        font.setWeight(QFont::Bold);
        return font;
    }
    default:
        return {};
    }
}

QVariant GraphFeaturesModel::measureData(const FeatureRow &row, int column, int role) const
{
    if (role == Qt::ToolTipRole || role == Qt::WhatsThisRole)
        return column == DescriptionColumn ? row.description : QVariant();
    if (role != Qt::DisplayRole)
        return {};
    switch (column) {
    case TypeColumn:
        return row.type;
    case NameColumn:
        return row.name;
    case DescriptionColumn:
        return row.description;
    case ResultColumn:
        return shownResult(row);
    default:
        return {};
    }
}

QVariant GraphFeaturesModel::shownResult(const FeatureRow &row) const
{
    const bool complete = !row.type.isEmpty() && !row.name.isEmpty() && !row.key.isEmpty();
    return complete && !dynamic && row.scalar ? results.value(featureIndex(row.key)) : QVariant();
}

QVariant GraphFeaturesModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section < 0 ||
        section >= columns.size())
        return {};
    return columns.at(section);
}
