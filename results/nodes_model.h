// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAbstractTableModel>
#include <QString>
#include <QStringList>

/// The nodes of a result, with a column for their inclusion that a view fills with check boxes.
/// Nothing fills it yet.
class NodesModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column { NodeColumn, InclusionColumn };

    explicit NodesModel(QObject *parent = nullptr);
    ~NodesModel() override;

    /// One name per row. Views are told nothing: set before the model is given to one.
    void setLabels(QStringList names);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    /// Accepts every value and keeps none, so that an edited name goes back to what it was.
    bool setData(const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

private:
    QStringList labels;
    const QStringList columns;
};
