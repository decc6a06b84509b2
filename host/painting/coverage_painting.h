// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <Eigen/Core>
#include <QPainter>
#include <QStringList>
#include <array>
#include <vector>

namespace corvane
{

/// An atlas seen along one axis of space.
struct AtlasView {
    QString title;
    QString left, right;    ///< what lies at the sides: "L" and "R"
    Eigen::MatrixXd values; ///< rows from the top x columns: coverage, NaN where no node is seen
    double width = 0;       ///< in mm, of all columns
    double height = 0;      ///< in mm, of all rows
};

/// How much of each node the run holds.
struct CoveragePicture {
    std::array<AtlasView, 3> views;
    std::vector<double> coverage; ///< of all nodes, 0 to 1
    double least = 0.5;           ///< nodes below it have no values
};

/// The colour of a coverage: from dark violet for 0 to pale yellow for 1, red below the least.
QColor coverageColour(double coverage, double least);

/// Paints the views beside each other in one scale, and below them a bar with each node's coverage,
/// the lowest at the left, over the line of the least one.
void paintCoverage(QPainter &painter, const QRectF &area, const CoveragePicture &picture);

} // namespace corvane
