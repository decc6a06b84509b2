// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dataset/subject.h"

#include <QAbstractTableModel>
#include <QSharedPointer>
#include <QStringList>
#include <QVector>

/// The dataset: one row per Subject. One model per main dialog, shown in its table.
///
/// Only the name, in column 0, is the model's to show and to edit; the other cells are widgets that
/// the dialog places over the table. Rows are shared: a finished result keeps the record that it
/// shows when the row goes.
class SubjectsModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    explicit SubjectsModel(QObject *parent = nullptr);
    ~SubjectsModel() override;

    // The parent index is ignored by both.
    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    /// Renames the row; an empty name is ignored. Always true. `dataChanged` is not emitted, and
    /// the column is not looked at.
    bool setData(const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;
    /// Editable while the row's record is; only enabled beyond the rows.
    Qt::ItemFlags flags(const QModelIndex &index) const override;

    /// Appends a row named "Subject N", with N the new number of rows, which is returned.
    int appendSubject();
    void removeSubjectAt(int row);

    /// The record of a row, which must exist.
    Subject &subjectAt(int row);
    QSharedPointer<Subject> sharedSubjectAt(int row) const;

signals:
    void subjectNameChanged(QString name, int row);

private:
    int subjectCount = 0;
    QVector<QSharedPointer<Subject>> subjects;
    QStringList headers;
};
