// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/painting/course_painting.h"

#include "host/painting/category_colours.h"
#include "host/painting/labels.h"
#include "host/painting/picture_colours.h"
#include "host/painting/scatter_painting.h"
#include "host/painting/volume_axis.h"

#include <QFontMetricsF>
#include <QPainterPath>
#include <algorithm>
#include <cmath>
#include <limits>

namespace corvane
{

namespace
{

constexpr double titleHeight = 30;
constexpr double gap = 8;

/// Mean 0 and variance 1 of what there is.
Eigen::ArrayXd standardised(const Eigen::ArrayXd &course)
{
    double n = 0, sum = 0, squares = 0;
    for (const double value : course)
        if (std::isfinite(value)) {
            n += 1;
            sum += value;
        }
    const double mean = sum / n;
    for (const double value : course)
        squares += std::isfinite(value) ? (value - mean) * (value - mean) : 0;
    const double deviation = std::sqrt(squares / std::max(n - 1, 1.0));
    return (course - mean) / (deviation > 0 ? deviation : 1);
}

double largest(const Eigen::ArrayXd &course)
{
    double most = 1;
    for (const double value : course)
        most = std::isfinite(value) ? std::max(most, std::abs(value)) : most;
    return most;
}

void paintBands(QPainter &painter, const QRectF &plot, const CoursePicture &picture)
{
    const int volumes = int(picture.leftOut.size());
    QStringList names;
    painter.setFont(labelFont(painter, 11));
    for (const CourseBand &band : picture.bands) {
        if (!names.contains(band.name))
            names += band.name;
        QColor colour = categoryColour(names.indexOf(band.name));
        colour.setAlpha(60);
        const double left = volumePlace(plot, std::max(band.first, 0), volumes);
        const double right = volumePlace(plot, std::min(band.last + 1, volumes), volumes);
        painter.fillRect(QRectF(left, plot.top(), right - left, plot.height()), colour);
        const QString name =
            QFontMetricsF(painter.font()).elidedText(band.name, Qt::ElideRight, right - left - 2);
        painter.setPen(inkOf(painter));
        if (name.size() > 1)
            painter.drawText(QRectF(left, plot.top(), right - left, 14), Qt::AlignCenter, name);
    }
}

void paintCourse(QPainter &painter, const QRectF &plot, const Eigen::ArrayXd &course, double limit)
{
    QPainterPath path;
    bool drawing = false;
    for (int volume = 0; volume < int(course.size()); ++volume) {
        if (!std::isfinite(course[volume])) {
            drawing = false;
            continue;
        }
        const double x = (volumePlace(plot, volume, int(course.size())) +
                          volumePlace(plot, volume + 1, int(course.size()))) /
                         2;
        const QPointF point(x, plot.center().y() - plot.height() / 2 * course[volume] / limit);
        if (!drawing)
            path.moveTo(point - QPointF(0.5, 0));
        path.lineTo(point);
        drawing = true;
    }
    painter.setBrush(Qt::NoBrush);
    painter.drawPath(path);
}

void paintNames(QPainter &painter, const QRectF &area, const CoursePicture &picture,
                const QColor (&colours)[2])
{
    painter.setFont(labelFont(painter, 12));
    const QFontMetricsF metrics(painter.font());
    double left = area.left();
    for (int n = 0; n < picture.names.size() && n < 2; ++n) {
        painter.setPen(QPen(colours[n], 2));
        painter.drawLine(QPointF(left, area.center().y()), QPointF(left + 18, area.center().y()));
        painter.setPen(inkOf(painter));
        const QString name =
            metrics.elidedText(picture.names[n], Qt::ElideRight, area.width() / 2 - 40);
        painter.drawText(QRectF(left + 24, area.top(), area.width(), area.height()),
                         Qt::AlignLeft | Qt::AlignVCenter, name);
        left += 24 + metrics.horizontalAdvance(name) + 24;
    }
}

} // namespace

void paintCourses(QPainter &painter, const QRectF &area, const CoursePicture &picture)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(area, paperOf(painter));
    const bool hasCourses = picture.first.size() > 0;
    // The scatter stands beside the text, the courses have the whole width below.
    const double most = hasCourses ? std::min({240.0, area.width() / 2, area.height() * 0.5}) : 0;
    // One that is too small says nothing.
    const double side = most < 150 ? 0 : most;
    const double room = area.width() - side - 2 * gap;
    paintTitle(painter, QRectF(area.left() + gap, area.top(), room, titleHeight), picture.title);
    painter.setPen(inkOf(painter));
    painter.setFont(labelFont(painter, 12));
    double top = area.top() + titleHeight;
    for (const QString &line : picture.lines + QStringList(picture.hint)) {
        QRectF taken;
        painter.drawText(QRectF(area.left() + gap, top, room, area.bottom() - top),
                         Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap, line, &taken);
        top += taken.height() + 2;
    }
    if (!hasCourses) {
        painter.restore();
        return;
    }
    top = std::max(top, area.top() + titleHeight + side);
    const QRectF courses(area.left(), top, area.width(), std::max(1.0, area.bottom() - top));
    const QColor colours[2] = {
        isDark(paperOf(painter)) ? QColor(146, 197, 222) : QColor(33, 102, 172),
        isDark(paperOf(painter)) ? QColor(244, 165, 130) : QColor(214, 96, 77)};
    QRectF plot = volumeArea(courses);
    plot.setLeft(courses.left() + 3 * gap);
    paintLeftOut(painter, plot, picture.leftOut);
    paintBands(painter, plot, picture);
    const Eigen::ArrayXd first = standardised(picture.first);
    const Eigen::ArrayXd second = standardised(picture.second);
    const double limit = 1.05 * std::max(largest(first), largest(second));
    painter.setPen(faintOf(painter));
    painter.drawLine(QPointF(plot.left(), plot.center().y()),
                     QPointF(plot.right(), plot.center().y()));
    painter.setPen(QPen(colours[0], 1.3));
    paintCourse(painter, plot, first, limit);
    painter.setPen(QPen(colours[1], 1.3));
    paintCourse(painter, plot, second, limit);
    painter.setPen(inkOf(painter));
    painter.drawLine(plot.bottomLeft(), plot.bottomRight());
    const int volumes = int(picture.leftOut.size());
    painter.setFont(labelFont(painter, 12));
    const int step = std::max(1, int(roundStep(volumes, 6)));
    for (int volume = 0; volume < volumes; volume += step) {
        const double place = volumePlace(plot, volume, volumes);
        painter.drawLine(QPointF(place, plot.bottom()), QPointF(place, plot.bottom() + 4));
        painter.drawText(QRectF(place - 40, plot.bottom() + 4, 80, 18),
                         Qt::AlignHCenter | Qt::AlignTop, QString::number(volume));
    }
    paintNames(painter, QRectF(plot.left(), courses.top(), plot.width(), axisTitle), picture,
               colours);
    ScatterPicture scatter;
    scatter.x = picture.names.value(0);
    scatter.y = picture.names.value(1);
    scatter.xs = first;
    scatter.ys = second;
    scatter.hasLine = true;
    if (side > 0)
        paintScatter(painter, QRectF(area.right() - side, area.top(), side, side + titleHeight),
                     scatter);
    painter.restore();
}

} // namespace corvane
