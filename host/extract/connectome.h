// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/extract/matrices.h"
#include "host/extract/node_series.h"
#include "host/extract/run_cleaning.h"
#include "host/files/progress.h"

/// @file
/// A run and an atlas become matrices, with no file written between.

namespace corvane
{

struct ConnectomeRequest {
    QString run;                          ///< 4-D NIfTI
    QString atlas;                        ///< 3-D image of labels
    QString labels;                       ///< table of their names; empty for none
    QString mask;                         ///< 3-D image; empty for none
    QString events;                       ///< table of events; empty for none
    std::optional<double> repetitionTime; ///< seconds; else the header's
    double minCoverage = 0.5;
    std::optional<double> dvarsScale; ///< median of the series for their DVARS; else as stored
    CleaningRequest cleaning;
    std::vector<Relationship> relationships{Relationship::Pearson};
    bool shrink = false;
    PartsRequest parts; ///< its events are read from the table
};

struct PartMatrix {
    Part part;
    Relationship relationship = Relationship::Pearson;
    NodeMatrix matrix;
};

struct Connectome {
    double repetitionTime = 0;
    RunGrid grid;
    std::vector<Node> nodes;
    std::vector<Stretch> stretches; ///< the nodes' voxels inside the mask, in the order of the file
    std::vector<Stretch> outside;   ///< those that the mask takes from them
    std::vector<qint64> usedVoxels;
    std::vector<double> coverage;
    Eigen::MatrixXd series; ///< the nodes' means, all volumes of the file x nodes, as in the file
    RunCleaning cleaning;
    CleanedSeries cleaned;   ///< NaN in the columns of nodes with too little coverage
    CleanedSeries uncleaned; ///< the same volumes and nodes with nothing taken off but the mean
    std::vector<PartMatrix> matrices;
    QStringList notes; ///< what the user should look at, one line each

    /// Whether a node has enough coverage, so that it has values.
    bool isCovered(std::size_t node) const;
};

/// Reads the files and the run, once, and computes all. Throws InputError, signals::Error,
/// signals::UsageError and WorkStopped.
Connectome makeConnectome(const ConnectomeRequest &request, const StepWatch &steps = {});

} // namespace corvane
