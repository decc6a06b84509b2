// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAbstractTableModel>
#include <QHash>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVector>

/// One measure of the table.
struct FeatureRow {
    QString type; ///< the heading above it
    QString name;
    QString description;
    QString key;
    bool scalar = false; ///< the result is one number
    int spare = 0;       ///< neither set nor read
};

/// The graph measures under their headings, with the results computed so far. One per results
/// dialog.
///
/// A result is stored under the index of its measure, which is stable once all rows are there. Only
/// a single number is shown by the table itself; everything else is looked at in a plot.
class GraphFeaturesModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column { TypeColumn, NameColumn, DescriptionColumn, ComputeColumn, ResultColumn };

    explicit GraphFeaturesModel(QObject *parent = nullptr);
    ~GraphFeaturesModel() override;

    /// Adds a row and returns its number. A row with neither name nor description nor key is a
    /// heading with the text `type`. A measure with a key that is there already replaces it.
    int addFeature(QString type, QString name, QString description, QString key, bool scalar);
    /// The measure of that key, or an empty one.
    FeatureRow feature(QString key) const;
    /// Where the result of that measure is stored; the number of measures for an unknown key.
    int featureIndex(QString key) const;
    /// The stored result. An invalid one is made where there is none.
    QVariant result(int index);
    void setResult(int index, QVariant value);
    /// Whether the subject has a matrix per interval of its protocol, so that no measure has a
    /// single number.
    void setDynamic(bool on);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;

private:
    QVariant headingData(const QString &heading, int column, int role) const;
    QVariant measureData(const FeatureRow &row, int column, int role) const;
    QVariant shownResult(const FeatureRow &row) const;

    QHash<QString, FeatureRow> features; ///< by key
    QVector<int> headingRows;
    QHash<int, QVariant> results; ///< by index of the measure
    QStringList rowKeys;          ///< per row the key of the measure or the text of the heading
    const QStringList columns;
    bool dynamic = false;
    int featureCount = 0; ///< measure rows
    int rowTotal = 0;
};
