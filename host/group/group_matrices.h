// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/graph_table.h"
#include "host/files/progress.h"
#include "host/group/group_request.h"
#include "statistics/edges.h"

namespace corvane
{

struct GroupMatrix {
    QString path;
    MatrixTable table;
};

/// Reads matrices of the same nodes in the same order. Throws InputError for others, and
/// WorkStopped.
std::vector<GroupMatrix> readGroupMatrices(const QStringList &paths,
                                           const ProgressWatch &watch = {});

/// The names of its nodes, or their numbers from 0.
std::vector<std::string> nodeNames(const MatrixTable &table);

/// Whether the matrices' edges are to become Fisher's z. Throws InputError for matrices that hold
/// different things.
bool becomeFisherZ(FisherZ wanted, const std::vector<GroupMatrix> &matrices);

struct GroupEdges {
    statistics::EdgeData edges; ///< matrices x edges among the nodes
    qint64 clipped = 0;         ///< correlations of all but 1 that were clipped
};

/// The edges among some nodes. Throws statistics::Error naming the file.
GroupEdges edgesOf(const std::vector<GroupMatrix> &matrices,
                   const std::vector<statistics::Index> &nodes,
                   const std::vector<std::string> &names, bool asFisherZ);

/// The matrices of some nodes, symmetric, with zeros on their diagonal: as graphs.
std::vector<Eigen::MatrixXf> graphsOf(const std::vector<GroupMatrix> &matrices,
                                      const std::vector<statistics::Index> &nodes);

struct TangentEdges {
    statistics::EdgeData edges;
    Eigen::MatrixXd mean; ///< nodes x nodes
    int steps = 0;
};

/// The edges among some nodes in tangent space. Throws InputError for a matrix that is no
/// covariance, statistics::Error.
TangentEdges tangentEdgesOf(const std::vector<GroupMatrix> &matrices,
                            const std::vector<statistics::Index> &nodes);

} // namespace corvane
