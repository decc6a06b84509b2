// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/explorer/explorer_model.h"

#include <QAbstractTableModel>
#include <QSortFilterProxyModel>
#include <QTableView>

namespace corvane
{

/// The nodes with what is known of them, and their graph measures as soon as these are computed.
class NodeTableModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    explicit NodeTableModel(ExplorerModel &model, QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    static constexpr int sortRole = Qt::UserRole;

private:
    void takeMeasures();

    ExplorerModel &m_model;
    QStringList m_measures; ///< of the columns behind those of the node
};

/// The drawn edges, the strongest first: what the pictures show, for screen readers and for
/// copying.
class EdgeTableModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    explicit EdgeTableModel(ExplorerModel &model, QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    const NetworkEdge &edge(int row) const { return m_edges[std::size_t(row)]; }

    static constexpr int sortRole = Qt::UserRole;

private:
    ExplorerModel &m_model;
    std::vector<NetworkEdge> m_edges;
};

/// A table that is sorted by its headers; Ctrl+C copies the selected rows, or all, with tabs
/// between the cells and the names of columns above; Escape clears the selection of all views.
class CopiedTable : public QTableView
{
    Q_OBJECT

public:
    CopiedTable(ExplorerModel &model, QAbstractTableModel *table, QWidget *parent = nullptr);

    QSortFilterProxyModel &sorted() { return *m_sorted; }
    void copyRows() const;

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    ExplorerModel &m_model;
    QSortFilterProxyModel *m_sorted;
};

} // namespace corvane
