// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "results/feature_values.h"

#include <Eigen/Core>
#include <QString>

#include <vector>

/// A graph measure that the results dialog offers.
struct GraphMeasure {
    const char *heading; ///< of its group in the table
    const char *key;
    const char *name;
    const char *description;
    const char *title; ///< of its plots
    /// The value of each node; null for the one measure of the whole graph, its global efficiency.
    Eigen::ArrayXf (*perNode)(const Eigen::MatrixXf &matrix);
    bool isLong; ///< the user is asked before it runs on a large matrix
};

/// All measures in the order of the table, those of one heading together.
const std::vector<GraphMeasure> &graphMeasures();

/// The measure of that key, or null.
const GraphMeasure *graphMeasure(const QString &key);

/// The values of a measure that has one per node.
FeatureValues valuesPerNode(const GraphMeasure &measure,
                            const std::vector<Eigen::MatrixXf> &matrices);
