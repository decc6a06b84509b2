// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QPainter>
#include <QString>
#include <optional>
#include <vector>

namespace corvane
{

/// Numbers of one kind.
struct Sample {
    QString name;
    std::vector<double> values; ///< those that are not finite are left out
    QColor colour;
};

/// How often which value comes.
struct HistogramPicture {
    QString title;               ///< below the axis, with the unit
    std::vector<Sample> samples; ///< drawn over each other, to the same area
    double low = 0;              ///< of the axis
    double high = 1;             ///< above low
    std::optional<double> line;  ///< a value that is marked, such as a limit
};

/// Paints the samples as outlines of steps. Values beyond the axis count in the outermost steps.
void paintHistogram(QPainter &painter, const QRectF &area, const HistogramPicture &picture);

/// Paints a dot for each value above the axis, in columns of dots of about the same value: a column
/// of a study's table. The dots of a column come closer when they are many.
void paintStrip(QPainter &painter, const QRectF &area, const HistogramPicture &picture);

} // namespace corvane
