// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/painting/grey_cells.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace corvane
{

Eigen::MatrixXd reduced(const Eigen::MatrixXd &table, Eigen::Index rows, Eigen::Index columns)
{
    using Index = Eigen::Index;
    rows = std::clamp<Index>(rows, 1, std::max<Index>(table.rows(), 1));
    columns = std::clamp<Index>(columns, 1, std::max<Index>(table.cols(), 1));
    if (rows >= table.rows() && columns >= table.cols())
        return table;
    Eigen::MatrixXd sums = Eigen::MatrixXd::Zero(rows, columns);
    Eigen::MatrixXd counts = sums;
    for (Index column = 0; column < table.cols(); ++column)
        for (Index row = 0; row < table.rows(); ++row) {
            if (std::isnan(table(row, column)))
                continue;
            const Index toRow = row * rows / table.rows();
            const Index toColumn = column * columns / table.cols();
            sums(toRow, toColumn) += table(row, column);
            counts(toRow, toColumn) += 1;
        }
    return (counts.array() > 0)
        .select(sums.array() / counts.array(), std::numeric_limits<double>::quiet_NaN());
}

QRgb greyValue(double share, int levels)
{
    const int steps = levels - 1;
    const int grey = int(std::lround(std::clamp(share, 0.0, 1.0) * steps)) * 255 / steps;
    return qRgb(grey, grey, grey);
}

QSize pixelsOf(const QPainter &painter, const QRectF &area)
{
    return painter.deviceTransform().mapRect(area).toAlignedRect().size();
}

} // namespace corvane
