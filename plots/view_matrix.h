// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <Eigen/Core>
#include <QBrush>
#include <QColor>
#include <QDialog>
#include <QList>
#include <QPixmap>
#include <QString>
#include <QStringList>
#include <QVector>

#include <memory>
#include <vector>

namespace Ui
{
class ViewMatrix;
}

/// Smallest and largest entry of a list of matrices. NaN entries are left out; with no other entry
/// both are NaN.
struct ValueRange {
    double minimum;
    double maximum;
};
ValueRange valueRange(const std::vector<Eigen::MatrixXf> &matrices);

/// Browser of the connectivity matrices of a result: one matrix at a time as a heat map, with an
/// overview, a legend, and the list of the protocol's conditions to choose from. The value under
/// the mouse stands in a line below the map.
///
/// Filled once, in this order: `setConditionNames` and `setConditionTimes` with a protocol,
/// `buildConditionList`, `loadRange`, `setLabels`, `fillTable`, `paintTable`, `drawOverview`,
/// `buildLegend`. Only hidden when it is closed.
class ViewMatrix : public QDialog
{
    Q_OBJECT

public:
    /// `parent` is the results dialog. With another parent there is nothing to browse.
    explicit ViewMatrix(QWidget *parent);
    ~ViewMatrix() override;

    void setConditionNames(QStringList names); ///< one per slice
    void setConditionTimes(QList<int> times);  ///< one per slice, in volumes
    void buildConditionList();
    /// Takes the first matrix as the one to show, and the range of all of them for the legend.
    void loadRange();
    void setLabels(QStringList names);
    void fillTable();
    void paintTable();
    void drawOverview();
    void buildLegend();
    /// Shows another slice, counted from 0, in place of the one before; a slice that is not there
    /// leaves the table and the overview empty.
    void showSlice(int slice);

    /// The map as a picture: all rows and columns with their names, also those out of sight. The
    /// window grows where it is too small for them.
    QPixmap tablePicture();
    QPixmap overviewPicture();

public slots:
    /// Shows the slice of the condition that sent this.
    void browseMatrix();
    /// Shows the value of the cell at row x and column y.
    void pickValue(int x, int y);
    void clearPickValue();

private:
    struct MatrixCell {
        double value;
        QString text;
        QColor color;
    };

    void clearTable();
    void sizeTable();
    void addCondition(int entry, const QColor &color, bool isEvent);

    const std::unique_ptr<Ui::ViewMatrix> ui;
    QVector<QVector<MatrixCell>> cells; ///< row first
    Eigen::MatrixXf matrix;
    double minimum; ///< of all slices
    double maximum; ///< of all slices
    QStringList labels;
    QStringList conditionNames;
    QList<int> conditionTimes;
    QBrush cellBrush; ///< of the cell filled last; nothing reads it
};
