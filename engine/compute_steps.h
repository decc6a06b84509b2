// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/measures.h"
#include "engine/spanning_trees.h"

#include <Eigen/Core>

#include <functional>
#include <vector>

class Subject;

/// @file
/// The steps of a compute in their order, for everyone who computes: from a subject's node matrix
/// to the finished matrices of its slices, by the settings that the subject holds.
///
///     1. the measure          one matrix per slice          connectivityWorker
///     2. the sign treatment   which signs stay              treatSigns
///     3. the treatment        symmetric, finite, no loops   nodalis::treatment
///     4. the spanning trees   if the subject wants them     spanningTrees
///
/// The first step takes long and may run on a thread of its own; the others follow where their
/// result is wanted.

enum class ComputeStep { Measure, SignTreatment, Treatment, SpanningTrees };

/// Is shown what each step has made: the matrices, or the weights of the trees.
using ComputeObserver = std::function<void(ComputeStep, const std::vector<Eigen::MatrixXf> &)>;

/// What a compute gives, an entry per slice in each list.
struct ComputedMatrices {
    std::vector<Eigen::MatrixXf> connectivity; ///< after both treatments
    SpanningTrees trees;                       ///< empty unless the subject wants them
};

/// Step 1 on `timeseries`, nodes x volumes. Throws std::bad_function_call when the subject's
/// measure is none of ConnectivityMeasure and there is a slice to measure, and what the progress of
/// all slices throws.
std::vector<Eigen::MatrixXf> measureSlices(const Subject &subject,
                                           const Eigen::MatrixXf &timeseries,
                                           const MeasureProgress &progress = {});

/// Steps 2 to 4 on what step 1 gave. Matrix values that are none of MatrixValues leave all signs.
ComputedMatrices finishSlices(const Subject &subject, std::vector<Eigen::MatrixXf> measured,
                              const ComputeObserver &observer = {});
