// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>
#include <QtCharts/QChart>
#include <QtCharts/QChartView>
#include <QtCharts/QLineSeries>

#include <vector>

class QMainWindow;

/// @file
/// What the two windows with line charts share.

/// An empty chart with a bold title.
QtCharts::QChart *makeLineChart(const QString &title);

/// A view on the chart whose context menu is the window's slot `showContextMenu(QPoint)`. A window
/// without that slot has no menu, and Qt says so in the debug log.
QtCharts::QChartView *makeLineChartView(QtCharts::QChart *chart, QMainWindow *window);

/// A line with the point (i, values[i]) for each finite value and with its points marked. Values
/// that are not finite have no place in a chart and are left out; the others keep their i.
QtCharts::QLineSeries *makeLine(const std::vector<float> &values, const QString &name);

/// Replaces the chart's X axis by one with a name per point, and attaches every line to it.
/// A name that repeats stays a category of its own: an invisible character tells it apart.
/// `wholeRange` sets the axis from the first to the last name.
void setCategoryAxis(QtCharts::QChart *chart, const QStringList &names, const QString &title,
                     bool wholeRange);

/// Widens a shown window, up to a limit, until each name on its chart's X axis has room; a name
/// without it is cut to dots.
void makeRoomForNames(QMainWindow *window, const QtCharts::QChart &chart, int widest);

/// A picture beyond this width opens in few programs.
constexpr int widestPicture = 16000;

/// Sets the title of the chart's Y axis, if it has one.
void setValueTitle(QtCharts::QChart *chart, const QString &title);
