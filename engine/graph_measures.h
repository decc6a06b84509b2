// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <Eigen/Core>
#include <nodalis/effort.h>

#include <vector>

class QString;

/// A graph measure with what it is called where: in the results dialog, in tables and in plots.
/// It has either a value per node or one value per matrix; the other function is null.
struct GraphMeasure {
    const char *heading; ///< of its group in the dialog
    const char *key;     ///< in the dialog
    const char *column;  ///< in tables, and the name of its picture's file
    const char *name;
    const char *description;
    const char *title; ///< of its plots
    bool isLong;       ///< the user is asked before it runs on a large matrix
    Eigen::ArrayXf (*perNode)(const Eigen::MatrixXf &matrix);
    float (*perMatrix)(const Eigen::MatrixXf &matrix) = nullptr;
    /// The column of one that may take minutes, with threads and progress, and of one per matrix;
    /// else null.
    Eigen::ArrayXf (*withEffort)(const Eigen::MatrixXf &matrix,
                                 const nodalis::Effort &effort) = nullptr;
};

/// All measures in the order of the dialog, those of one heading together.
const std::vector<GraphMeasure> &graphMeasures();

/// The measure of that key, or null.
const GraphMeasure *graphMeasure(const QString &key);

/// All measures in the order of columns: those with a value per node, then those of the matrix.
std::vector<GraphMeasure> graphMeasuresOfTables();

/// The column of a measure: a value per node, for a measure of the matrix its one value for each.
/// Throws nodalis::Ended.
Eigen::ArrayXf columnOf(const GraphMeasure &measure, const Eigen::MatrixXf &matrix,
                        const nodalis::Effort &effort = {});

/// The values of a measure that has one per node: a list for each matrix.
std::vector<std::vector<float>> valuesPerNode(const GraphMeasure &measure,
                                              const std::vector<Eigen::MatrixXf> &matrices);
