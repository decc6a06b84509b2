// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <vector>

#include "statistics/components.h"
#include "statistics/glm.h"
#include "statistics/rearrangements.h"

namespace statistics
{

struct PermutationTestOptions {
    Sides sides = Sides::each;
    /// Of t or F, 0 or above, for networks; none for none. Several give a curve over thresholds,
    /// whose p values are not corrected for there being several.
    std::vector<double> thresholds;
    int threads = 0; ///< 0: one for each processor
    /// Told now and then how many rearrangements are done; called from any thread, one call at a
    /// time. What it throws ends the test.
    std::function<void(Index done, Index count)> progress;
};

/// The networks of edges above one threshold.
struct NetworkResult {
    double threshold = 0.0;
    std::vector<Component> components; ///< greater before less
    /// For each rearrangement the largest extent and the largest intensity of a component, each
    /// taken on its own, 0 without a component. With Sides::each the larger one of the two sides.
    Eigen::ArrayXd null_extent;
    Eigen::ArrayXd null_intensity;
};

struct PermutationTestResult {
    GlmResult model;
    /// Per edge: how often its own statistic was reached.
    Eigen::ArrayXd p_permuted;
    /// Per edge: how often the largest statistic of all edges reached it (max-T).
    Eigen::ArrayXd p_fwe;
    /// Per edge: Benjamini-Hochberg of the model's p.
    Eigen::ArrayXd q;
    /// For each rearrangement the largest |t| (each, both), t (greater), -t (less), or F.
    Eigen::ArrayXd null_maximum;
    std::vector<NetworkResult> networks;
    Index rearrangements = 0;
    bool is_exhaustive = false;
};

/// Tests a hypothesis at all edges by rearranging the residuals of its reduced model.
///
/// - Each edge on its own (`p_permuted`), and with the error rate of the family of all edges kept
///   by the largest statistic (`p_fwe`).
/// - The network-based statistic: edges strictly above a threshold, their connected components, the
///   extent (edges) and the intensity (sum of t - threshold) of each against those of the largest
///   component in each rearrangement. `greater` and `less` make one graph of t or -t, `both` one of
///   |t|, `each` two graphs with a null distribution in common: the larger side's.
/// - p = (b + 1) / (m + 1) with b of the m null values reaching the observed one (within 1e-12),
///   and b / M if all distinct rearrangements were done; never 0.
///
/// The results do not depend on the number of threads, nor on the processor or the system as far as
/// numbers within 1e-12 of each other are not told apart. O(m * subjects * columns * edges) time;
/// the memory of the data once more, and little per thread.
///
/// The test is exact without columns beside the tested one and a constant; with them it is
/// approximate, and good from about 40 subjects on.
///
/// Sources: Freedman and Lane 1983, J Bus Econ Stat 1:292, doi:10.2307/1391660; Winkler et al.
/// 2014, NeuroImage 92:381, doi:10.1016/j.neuroimage.2014.01.060; Nichols and Holmes 2002, Hum
/// Brain Mapp 15:1, doi:10.1002/hbm.1058; Phipson and Smyth 2010, Stat Appl Genet Mol Biol 9:39,
/// doi:10.2202/1544-6115.1585; Zalesky et al. 2010, NeuroImage 53:1197,
/// doi:10.1016/j.neuroimage.2010.06.041.
///
/// \param data subjects x edges, complete.
/// \throws Error for data, hypothesis and rearrangements of different numbers of subjects, data
///         that are not finite, a threshold below 0 or not finite, or thresholds for what is no
///         upper triangle.
PermutationTestResult permutation_test(const EdgeData &data, const Hypothesis &hypothesis,
                                       const Rearrangements &rearrangements,
                                       const PermutationTestOptions &options = {});

} // namespace statistics
