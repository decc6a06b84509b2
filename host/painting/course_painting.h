// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <Eigen/Core>
#include <QPainter>
#include <QStringList>
#include <vector>

namespace corvane
{

struct CourseBand {
    QString name;
    int first = 0, last = 0; ///< volumes, both belong to it
};

/// The courses of two nodes over the volumes of a run, and the one against the other.
struct CoursePicture {
    QString title;
    QStringList lines;            ///< what is known, above the courses
    QStringList names;            ///< of the two nodes
    Eigen::ArrayXd first, second; ///< one for each volume of the file, NaN where there is none
    std::vector<bool> leftOut;
    std::vector<CourseBand> bands; ///< conditions
    QString hint;                  ///< stands in place of the courses when there are none
};

/// Paints title and lines, then both courses in their own units of standard deviation, over bands
/// for conditions and for volumes that were left out, and the scatter of both with its line of
/// least squares. Uses the painter's font family and its background as the paper.
void paintCourses(QPainter &painter, const QRectF &area, const CoursePicture &picture);

} // namespace corvane
