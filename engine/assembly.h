// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/measures.h"

#include <Eigen/Core>

#include <utility>
#include <vector>

class Subject;
struct SubjectProtocol;

/// @file
/// From per-voxel series to connectivity matrices. The first step, from voxels to one mean course
/// per node, is `Subject::averagedTimeseries`.

/// A matrix of `rowCount` x `columnCount` with entry (r, c) = rows[r][c]; empty without rows. The
/// caller keeps the rows.
Eigen::MatrixXf matrixFromRows(const float *const *rows, unsigned rowCount, unsigned columnCount);

/// The interval of each slice of a compute with protocol: one per distinct start, in ascending
/// order. Volumes count from 1, both ends are included.
std::vector<std::pair<int, int>> sliceIntervals(const SubjectProtocol &protocol);

/// The volumes of such an interval. What lies beyond the run is cut off; when nothing is left the
/// block has no columns.
Eigen::MatrixXf blockOfInterval(const Eigen::MatrixXf &timeseries, std::pair<int, int> interval);

/// One connectivity matrix per slice of `timeseries` (nodes x volumes): without protocol of the
/// whole run, with `useProtocol` of the block of each of `sliceIntervals`.
///
/// Runs on a pool thread and does not look at cancellation.
std::vector<Eigen::MatrixXf> connectivityWorker(const Subject *subject, MeasureFunction measure,
                                                Eigen::MatrixXf timeseries);
