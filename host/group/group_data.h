// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/progress.h"
#include "host/group/group_request.h"
#include "statistics/design.h"
#include "statistics/edges.h"

namespace corvane
{

/// What QC-FC needs beside the edges. Rows belong to those of the group.
struct MotionData {
    Eigen::VectorXd meanFd;
    /// The columns of the design without those of mean_fd.
    Eigen::MatrixXd covariates;
    std::vector<std::string> columns;
    statistics::EdgeData uncleaned;  ///< without rows if not all have an uncleaned matrix
    Eigen::ArrayXd distances;        ///< per edge in mm, NaN where unknown; empty without centroids
    double meanDegreesOfFreedom = 0; ///< of the table's column degrees_of_freedom; NaN without
};

/// The complete data of a group, ready for tests. Rows of the design, participants, sessions,
/// blocks, graphs and edges belong together.
struct GroupData {
    std::vector<std::string> participants;
    std::vector<std::string> sessions; ///< labels, empty without a column of them
    std::vector<std::string> blocks;   ///< labels, empty without blocks
    statistics::Design design;
    std::vector<std::string> nodes; ///< names, or numbers from 0 for matrices without names
    statistics::EdgeData edges;     ///< Fisher's z if that is so, or those of tangent space
    bool isFisherZ = false;
    qint64 clipped = 0;                  ///< correlations of all but 1 that were clipped
    std::vector<Eigen::MatrixXf> graphs; ///< for distances only
    Eigen::MatrixXd tangentMean;         ///< empty without tangent space
    int tangentSteps = 0;
    MotionData motion; ///< for QC-FC only
    /// Which rows of the table and which nodes left, and why, one line each.
    QStringList left;
    QStringList notes; ///< what the user should know besides, one line each
};

/// Reads the table, the matrices of the rows that the design includes, and what all of them have.
/// Throws InputError and statistics::Error with one line that names the file, the participant or
/// the column.
GroupData readGroupData(const GroupRequest &request, const StepWatch &steps = {});

} // namespace corvane
