// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/measures.h"

#include <Eigen/Core>

#include <vector>

class Subject;

/// @file
/// From per-voxel series to connectivity matrices. The first step, from voxels to one mean course
/// per node, is `Subject::averagedTimeseries`.

/// A matrix of `rowCount` x `columnCount` with entry (r, c) = rows[r][c]; empty without rows. The
/// caller keeps the rows.
Eigen::MatrixXf matrixFromRows(const float *const *rows, unsigned rowCount, unsigned columnCount);

/// One connectivity matrix per slice of `timeseries` (nodes x volumes): without protocol the whole
/// run, with `useProtocol` one block of volumes per distinct interval start, in ascending order.
/// Intervals count volumes from 1 and include both ends; what lies beyond the run is cut off, and
/// when nothing is left the measure gets a block without columns.
///
/// Runs on a pool thread and does not look at cancellation.
std::vector<Eigen::MatrixXf> connectivityWorker(const Subject *subject, MeasureFunction measure,
                                                Eigen::MatrixXf timeseries);
