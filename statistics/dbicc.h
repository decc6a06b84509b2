// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

#include <Eigen/Core>

#include "statistics/edges.h"

namespace statistics
{

struct Dbicc {
    double value = 0.0;
    Index within = 0;  ///< pairs of sessions of one participant
    Index between = 0; ///< pairs of sessions of two participants
};

/// How much nearer sessions of one participant are to each other than to those of others:
///
///     dbICC = 1 - mean of d^2 within participants / mean of d^2 between them, over all pairs
///
/// 1 for sessions that repeat exactly, about 0 where sessions tell nothing of who was measured; it
/// can be negative. NaN if all distances between participants are 0.
///
/// Source: Xu et al. 2021, Biometrics 77:258, doi:10.1111/biom.13287.
///
/// \param distances sessions x sessions.
/// \param participants one for each session.
/// \throws Error if the matrix is not one of distances, the lists differ in length, or there is no
///         pair within or none between.
Dbicc dbicc(const Eigen::MatrixXd &distances, const std::vector<std::string> &participants);

} // namespace statistics
