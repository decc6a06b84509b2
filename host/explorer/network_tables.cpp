// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/explorer/network_tables.h"

#include "engine/graph_measures.h"

#include <QApplication>
#include <QClipboard>
#include <QHeaderView>
#include <QKeyEvent>
#include <algorithm>
#include <cmath>

namespace corvane
{

namespace
{

constexpr int nodeColumns = 4;

QVariant numberData(double value, int role)
{
    if (role == Qt::TextAlignmentRole)
        return int(Qt::AlignRight | Qt::AlignVCenter);
    if (role == NodeTableModel::sortRole)
        return std::isnan(value) ? QVariant() : QVariant(value);
    if (role != Qt::DisplayRole)
        return {};
    return std::isnan(value) ? QStringLiteral("n/a") : QString::number(value, 'g', 4);
}

QVariant textData(const QString &text, int role)
{
    return role == Qt::DisplayRole || role == NodeTableModel::sortRole ? QVariant(text)
                                                                       : QVariant();
}

} // namespace

NodeTableModel::NodeTableModel(ExplorerModel &model, QObject *parent)
    : QAbstractTableModel(parent), m_model(model)
{
    for (const GraphMeasure &measure : graphMeasuresOfTables())
        if (measure.perNode != nullptr)
            m_measures += QString::fromUtf8(measure.name);
    connect(&model, &ExplorerModel::measuresChanged, this, &NodeTableModel::takeMeasures);
}

void NodeTableModel::takeMeasures()
{
    if (rowCount() > 0)
        Q_EMIT dataChanged(index(0, nodeColumns), index(rowCount() - 1, columnCount() - 1));
}

int NodeTableModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_model.result().nodes.size());
}

int NodeTableModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : nodeColumns + int(m_measures.size());
}

QVariant NodeTableModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return {};
    const ResultNode &node = m_model.result().nodes[std::size_t(index.row())];
    switch (index.column()) {
    case 0:
        return textData(node.name, role);
    case 1:
        return textData(node.network, role);
    case 2:
        return textData(node.hemisphere, role);
    case 3:
        return numberData(node.coverage, role);
    default: {
        const NetworkMeasures &measures = m_model.measures();
        const int column = index.column() - nodeColumns;
        return numberData(column < measures.nodes.cols() ? measures.nodes(index.row(), column)
                                                         : std::nan(""),
                          role);
    }
    }
}

QVariant NodeTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role != Qt::DisplayRole)
        return {};
    if (orientation == Qt::Vertical)
        return section + 1;
    const QStringList names{tr("Node"), tr("Network"), tr("Side"), tr("Coverage")};
    return section < nodeColumns ? names[section] : m_measures.value(section - nodeColumns);
}

EdgeTableModel::EdgeTableModel(ExplorerModel &model, QObject *parent)
    : QAbstractTableModel(parent), m_model(model), m_edges(model.drawn().edges)
{
    connect(&model, &ExplorerModel::drawnChanged, this, [this] {
        beginResetModel();
        m_edges = m_model.drawn().edges;
        endResetModel();
    });
}

int EdgeTableModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_edges.size());
}

int EdgeTableModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : 3;
}

QVariant EdgeTableModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return {};
    const NetworkEdge &edge = m_edges[std::size_t(index.row())];
    if (index.column() == 2)
        return numberData(edge.value, role);
    const int node = index.column() == 0 ? edge.from : edge.to;
    return textData(m_model.result().nodes[std::size_t(node)].name, role);
}

QVariant EdgeTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role != Qt::DisplayRole)
        return {};
    if (orientation == Qt::Vertical)
        return section + 1;
    return QStringList{tr("Node"), tr("Other node"), tr("Value")}.value(section);
}

CopiedTable::CopiedTable(ExplorerModel &model, QAbstractTableModel *table, QWidget *parent)
    : QTableView(parent), m_model(model), m_sorted(new QSortFilterProxyModel(this))
{
    m_sorted->setSourceModel(table);
    m_sorted->setSortRole(NodeTableModel::sortRole);
    m_sorted->setFilterKeyColumn(-1);
    m_sorted->setFilterCaseSensitivity(Qt::CaseInsensitive);
    setModel(m_sorted);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    // As the model has them, until a header is clicked.
    horizontalHeader()->setSortIndicator(-1, Qt::AscendingOrder);
    setSortingEnabled(true);
    setTabKeyNavigation(false);
    setAlternatingRowColors(true);
    verticalHeader()->hide();
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 6);
    horizontalHeader()->setSectionResizeMode(QHeaderView::Interactive);
}

void CopiedTable::copyRows() const
{
    QModelIndexList rows = selectionModel()->selectedRows();
    if (rows.isEmpty())
        for (int row = 0; row < m_sorted->rowCount(); ++row)
            rows += m_sorted->index(row, 0);
    std::sort(rows.begin(), rows.end());
    QStringList lines;
    QStringList head;
    for (int column = 0; column < m_sorted->columnCount(); ++column)
        head += m_sorted->headerData(column, Qt::Horizontal).toString();
    lines += head.join(QLatin1Char('\t'));
    for (const QModelIndex &row : qAsConst(rows)) {
        QStringList cells;
        for (int column = 0; column < m_sorted->columnCount(); ++column)
            cells += m_sorted->index(row.row(), column).data().toString();
        lines += cells.join(QLatin1Char('\t'));
    }
    QApplication::clipboard()->setText(lines.join(QLatin1Char('\n')) + QLatin1Char('\n'));
}

void CopiedTable::keyPressEvent(QKeyEvent *event)
{
    if (event->matches(QKeySequence::Copy))
        copyRows();
    else if (event->key() == Qt::Key_Escape)
        m_model.select(-1);
    else
        QTableView::keyPressEvent(event);
}

} // namespace corvane
