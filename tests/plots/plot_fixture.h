// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/connectivity_object.h"
#include "plots/circular_plot_widget.h"
#include "plots/my_graphics_simple_text_item.h"
#include "results/connectivity_object_ui.h"
#include "tests/support/qt_printers.h"
#include "tests/support/reference_folder.h"

#include <Eigen/Core>
#include <QGraphicsSimpleTextItem>
#include <QString>
#include <QStringList>
#include <QtCharts/QChart>

#include <gtest/gtest.h>

#include <ostream>
#include <vector>

/// @file
/// Results to plot, and what is seen of a ring.

inline void PrintTo(const QColor &color, std::ostream *out)
{
    *out << qPrintable(color.name(QColor::HexArgb));
}

inline void PrintTo(const QPointF &point, std::ostream *out)
{
    *out << '(' << point.x() << ", " << point.y() << ')';
}

/// The first n rows and columns of a connectivity matrix of a real recording, at most 129. Without
/// the folder of recordings it is empty.
Eigen::MatrixXf realMatrix(int n);

#define SKIP_WITHOUT_REAL_MATRICES()                                                               \
    if (realMatrix(1).size() == 0)                                                                 \
    GTEST_SKIP() << "no real connectivity matrix: there is no folder of them at "                  \
                 << referenceFolder()

/// "Node 0", "Node 1", ...
QStringList nodeNames(int n);

/// One interval of a protocol, which is one slice.
struct SliceOfProtocol {
    int start;
    QString name;
    int isEvent;
};

/// A finished subject with its results dialog, which is not shown.
class Result
{
public:
    explicit Result(const std::vector<Eigen::MatrixXf> &matrices,
                    const QVector<SliceOfProtocol> &protocol = {}, bool useProtocol = true);

    QSharedPointer<Subject> subject;
    ConnectivityObject object{QStringLiteral("Subject 1"), nullptr};
    ConnectivityObjectUI dialog{&object, nullptr};
};

QtCharts::QChart *chartOf(const CircularPlotWidget &ring);
/// In the order of drawing.
QList<QtCharts::QSplineSeries *> edgesOf(const CircularPlotWidget &ring);
/// The edge between two nodes, null if there is none.
QtCharts::QSplineSeries *edgeBetween(const CircularPlotWidget &ring, int one, int other);
/// Null while there is none.
QtCharts::QScatterSeries *nodesOf(const CircularPlotWidget &ring);
/// All that exist, in the order in which they were made.
QVector<MyGraphicsSimpleTextItem *> labelsOf(const CircularPlotWidget &ring);
QVector<MyGraphicsSimpleTextItem *> visibleLabelsOf(const CircularPlotWidget &ring);
QGraphicsSimpleTextItem *valueItemOf(const CircularPlotWidget &ring);
/// Null before the first trigger.
QGraphicsSimpleTextItem *titleItemOf(const CircularPlotWidget &ring);

/// The part of a chart that tells the others of series and axes that come and go.
QObject *dataSetOf(const QtCharts::QChart &chart);
/// How many slots are connected to a signal of an object, which it tells nobody but its own class.
int receiversOf(const QObject &object, const char *signal);
