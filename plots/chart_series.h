// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCharts/QChart>
#include <QtCharts/QXYSeries>

/// @file
/// What keeps a chart with thousands of series fast. Done the chart's own way, each of these takes
/// time by the square of their number.

/// From now on, series that come and go are told to the part of the chart that draws them and to no
/// other: they get no colours of the theme and no place in the legend, and must have their pens. A
/// chart that is built of other parts than known here stays as it is.
void connectDrawingAlone(QtCharts::QChart *chart);

/// Adds a series of points to a chart, where both coordinates run from 0 to `length` whatever the
/// points are. The chart needs no axes for that: they are slow to let go of many series.
void addToSquare(QtCharts::QChart *chart, QtCharts::QXYSeries *series, double length);
