// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dataset/subject.h"
#include "engine/compute_settings.h"
#include "host/files/cleaning_ledger.h"
#include "host/files/progress.h"
#include "host/session/session.h"

#include <Eigen/Core>
#include <QSharedPointer>
#include <QString>
#include <QStringList>
#include <QVector>

#include <optional>
#include <vector>

/// @file
/// The plugin's compute of one subject without its windows: through the host's function table and
/// the plugin's own functions, step by step as the main dialog does it. Time courses that were made
/// elsewhere take the place of a run and its VOIs; from there on all is the same.

namespace corvane
{

struct ComputeRequest {
    QString anatomy;
    QString vtc;
    QString voi;
    QString timeseries; ///< a table as readSeriesTable takes it, instead of the three above
    QString prt;        ///< empty: only the protocol that the VTC names
    bool useProtocol = false;
    QVector<int> seeds; ///< empty: all VOIs
    /// Nodes whose rows of the matrix stand in a table of their own; every node of that name.
    QStringList seedNames;
    ConnectivityMeasure measure = ConnectivityMeasure::Correlation;
    MatrixValues matrixValues = MatrixValues::Absolute;
    bool computeMst = true;
    bool allowSingular = false; ///< a partial correlation of nodes that it is not defined for, too
    bool allowMismatch = false; ///< files of different subjects or spaces, too
    bool plots = false;         ///< pictures beside the tables
    bool names = false;         ///< of the nodes, around the numbers of matrices and courses
};

/// One node: a chosen VOI, or column of a table.
struct ComputedNode {
    int voi; ///< its number in the VOI file or table, from 0
    QString name;
    std::optional<int> voxels; ///< 0 for a VOI that is empty; unset for a column
};

/// What belongs to one slice of the result.
struct ComputedSlice {
    QString condition; ///< empty without protocol
    bool event = false;
    Eigen::MatrixXf connectivity; ///< after both treatment passes
    // Of its spanning tree, empty when not asked for.
    Eigen::MatrixXf mst;  ///< the weights that it keeps
    Eigen::MatrixXi tree; ///< 1 where it keeps one
};

struct ComputeResult {
    QSharedPointer<Subject> subject; ///< the record, for windows that show the result
    std::vector<ComputedNode> nodes;
    Eigen::MatrixXf timeseries; ///< nodes x volumes
    std::vector<ComputedSlice> slices;
    std::vector<int> seedRows;              ///< nodes of the request's seed names, in their order
    std::optional<double> repetitionTime;   ///< seconds; unset for a table
    QString vtcChecksum;                    ///< as its header has it
    std::optional<CleaningLedger> cleaning; ///< likewise; unset for a run that was not cleaned
    QString protocolFile;                   ///< the one in use, empty without
    /// What the host and the plugin said while it went on, and what of the result is without
    /// meaning.
    QStringList warnings;
};

/// Loads and computes in a session, which must be the current one; the document that it opens there
/// is closed again. Throws InputError when a file cannot be used, a seed does not exist, a volume
/// of a table has no value at all, a protocol is wanted where there is none, or, unless it is
/// allowed, files say that they are of different subjects or spaces, or a partial correlation is
/// asked of a node that is empty, constant or not finite; and WorkStopped.
ComputeResult compute(Session &session, const ComputeRequest &request, const StepWatch &steps = {});

} // namespace corvane
