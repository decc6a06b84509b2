// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/explorer/edge_threshold.h"

#include <QStringList>
#include <functional>

/// @file
/// The graph measures of what is drawn, and over a range of densities.

namespace corvane
{

/// All measures of engine/graph_measures.h for one network.
struct NetworkMeasures {
    QStringList columns;   ///< as tables name them
    QStringList names;     ///< for people
    Eigen::MatrixXd nodes; ///< nodes x those with a value per node
    /// A value for each: of the network, else the mean over its nodes. Global efficiency is the
    /// mean of the nodal one.
    Eigen::ArrayXd whole;
};

/// Asked between steps of the work; false ends it.
using GoOn = std::function<bool()>;

/// Of the weights' absolute values. The measures run side by side on two threads. Nodes without any
/// value (`isKnown` false) are left out before, so that they change nothing; they have NaN. Empty
/// when it was ended.
NetworkMeasures measuresOf(const std::vector<NetworkEdge> &edges, const std::vector<bool> &isKnown,
                           const GoOn &goOn = {});

/// Measures over densities.
struct MeasureCurves {
    std::vector<double> densities;      ///< ascending
    std::vector<NetworkMeasures> steps; ///< one for each
};

/// The densities that curves are drawn over: 0.05, 0.1, .. 0.4.
std::vector<double> usualDensities();

/// Each density as kept() has it, with the tree if the threshold has one.
MeasureCurves measureCurves(const RankedEdges &edges, const std::vector<bool> &isKnown,
                            const EdgeThreshold &threshold, const std::vector<double> &densities,
                            const GoOn &goOn = {});

/// A measure over the densities: of a node, or of the network for -1.
Eigen::ArrayXd curveOf(const MeasureCurves &curves, int measure, int node);

/// The area below a curve by the trapezoid rule, divided by the range of x: a mean that no single
/// threshold decides. The value itself for one point; NaN for none.
double meanArea(const std::vector<double> &x, const Eigen::ArrayXd &y);

/// Nodes that have a value with any other node.
std::vector<bool> knownNodes(const Eigen::MatrixXd &values);

} // namespace corvane
