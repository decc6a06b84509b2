// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAbstractTableModel>
#include <QSortFilterProxyModel>
#include <QStringList>

#include <vector>

namespace corvane
{

/// The table of a study, participants_connectome.tsv, as it stands in the file.
class StudyTable : public QAbstractTableModel
{
    Q_OBJECT

public:
    explicit StudyTable(QObject *parent = nullptr);

    /// Takes the table of a study's folder; without one the study is empty, which is no error.
    /// Throws InputError, and then is empty.
    void read(const QString &folder);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;

    /// What a row has in a column of the file; empty for "n/a" and where there is no such column.
    QString text(int row, const char *column) const;

    /// Whether the column tells what the names of the runs tell as well.
    bool isInRunName(int column) const;

    /// "89 done, 4 excluded": how many rows have which status.
    QString summary() const;

    /// Where the files of a row are, below the study's folder: "sub-01/ses-a/func".
    QString filesOf(int row) const;
    /// What the names of a row's files begin with.
    QString matricesOf(int row) const;
    /// The best page there is of a row: its own, the participant's or the study's. Empty without.
    QString pageOf(int row) const;

    static constexpr int sortRole = Qt::UserRole;

private:
    QString m_folder;
    QStringList m_columns;
    std::vector<QStringList> m_rows;
};

/// Rows with a status and a text anywhere in them, sorted by numbers where there are numbers.
class StudyFilter : public QSortFilterProxyModel
{
    Q_OBJECT

public:
    explicit StudyFilter(StudyTable *table);

    void setText(const QString &text);
    void setStatus(const QString &status); ///< empty for any

protected:
    bool filterAcceptsRow(int row, const QModelIndex &parent) const override;

private:
    const StudyTable *m_table;
    QString m_text;
    QString m_status;
};

} // namespace corvane
