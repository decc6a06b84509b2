// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <Eigen/Core>
#include <QPainter>
#include <QStringList>
#include <vector>

namespace corvane
{

/// A measure over the densities of a network.
struct MeasureCurve {
    QString name;
    Eigen::ArrayXd network; ///< of the network, or the mean of its nodes
    double area = 0;        ///< below it, divided by the range of the densities
    Eigen::ArrayXd node;    ///< of one node; empty without
    double nodeArea = 0;
};

struct MeasurePicture {
    QString title;
    std::vector<double> densities; ///< shares
    std::vector<MeasureCurve> curves;
    QString node;    ///< whose curves they are, empty without
    double now = -1; ///< the density that other views show; below 0 for none
    QString foot;
};

/// Paints a small plot for each measure, the area below its curve shaded and told in its title.
/// Uses the painter's font family and its background as the paper.
void paintMeasures(QPainter &painter, const QRectF &area, const MeasurePicture &picture);

} // namespace corvane
