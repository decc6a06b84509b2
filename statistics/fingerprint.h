// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

#include <Eigen/Core>

#include "statistics/edges.h"

namespace statistics
{

struct Fingerprint {
    /// C_ij, Pearson's correlation of subject i's edges in session 1 and subject j's in session 2.
    Eigen::MatrixXd similarity;
    double rate_1_to_2 = 0.0; ///< share of rows whose largest entry is the subject's own
    double rate_2_to_1 = 0.0; ///< share of columns
    double p_1_to_2 = 0.0;
    double p_2_to_1 = 0.0;
    double idiff = 0.0;         ///< 100 (mean C_ii - mean of C_ij, i != j)
    Eigen::ArrayXd null_1_to_2; ///< rates with shuffled identities
    Eigen::ArrayXd null_2_to_1;
};

/// Whether subjects are known again from one session to the other by their edges. A hit is a
/// subject whose own correlation is strictly the largest of its row (or column): of two equal ones
/// neither hits. The null distribution shuffles the labels of session 2; p = (b + 1) / (m + 1), or
/// b / M if all orders are no more than m.
///
/// Sources: Finn et al. 2015, Nat Neurosci 18:1664, doi:10.1038/nn.4135; Amico and Goñi 2018, Sci
/// Rep 8:8254, doi:10.1038/s41598-018-25089-1 (Idiff).
///
/// \param session_1, session_2 subjects x edges of the same subjects, in Fisher z where the edges
///        are correlations.
/// \throws Error if they differ in size, hold what is not finite, have fewer than two subjects, or
///         a subject's edges are all the same.
Fingerprint fingerprint(const EdgeData &session_1, const EdgeData &session_2, Index permutations,
                        std::uint64_t seed);

} // namespace statistics
