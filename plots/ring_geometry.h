// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QPointF>
#include <QSize>
#include <QVector>

/// @file
/// Where the parts of the circular plot stand. Node positions are in units of the chart's axes,
/// which run from 0 to `ringAxisLength` with y upwards. Labels stand in item coordinates of the
/// chart, with y downwards.

constexpr double ringAxisLength = 640.0;

/// The nodes of a ring in their order.
struct Ring {
    QVector<double> angles; ///< radians
    QVector<QPointF> positions;
};

/// A ring of n nodes, evenly spread: the first one step past angle zero, the last at a full turn.
Ring makeRing(quint32 n);

/// Middle control point of the edge between two nodes: halfway from the middle of their chord to a
/// point slightly above the ring's centre.
QPointF edgeControlPoint(const QPointF &from, const QPointF &to);

/// The node whose name stands at position k of a ring of n: labels are placed by the numbers of the
/// nodes in coordinates that are upside down, so that a label's place is that of the mirrored node.
int mirroredNode(int k, int n);

/// How a label stands: turned by degrees around its top left corner.
struct LabelPlacement {
    double rotation;
    QPointF position;
};

/// Placement of the label at a node's numbers, outwards from the centre of a chart of that size.
/// The node must not stand in the centre.
LabelPlacement placeLabel(double angle, const QPointF &node, const QSize &chartSize);
