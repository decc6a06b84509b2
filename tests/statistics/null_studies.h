// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "statistics/glm.h"

/// Simulated studies in which nothing is to be found: how often do the group tests find something?
///
/// Each study has 40 subjects and 28 nodes and is tested with 199 rearrangements; it counts as a
/// rejection if p <= 0.05.
namespace null_studies
{

/// Blocks that shift the data and hold unequal shares of the groups.
enum class Blocks {
    none,
    ignored,  ///< they are there, and permutations are free
    within,   ///< permutations stay within them
    modelled, ///< the same, and the model has a column for each as well
};

struct Kind {
    std::string name;
    bool one_sample = false;
    bool covariates = false;
    Blocks blocks = Blocks::none;
    statistics::Sides sides = statistics::Sides::each;
    /// Whether it is not to be tested like this, so that it has to be seen to fail.
    bool must_fail = false;
};

/// All kinds.
const std::vector<Kind> &kinds();

/// Two-sided p of the thresholds of networks.
constexpr std::array<double, 2> threshold_p = {0.001, 0.01};

/// How many studies were rejected by a network.
struct NetworkCounts {
    int extent = 0;
    int extent_ties_broken = 0; ///< ties with null values are decided by lot
    int intensity = 0;
    int intensity_ties_broken = 0;
};

/// How many studies of a kind were rejected.
struct Counts {
    int max_t = 0;
    std::array<NetworkCounts, threshold_p.size()> networks; ///< for each threshold
};

/// Simulates and tests studies `first` to `first + studies - 1` of a kind, on all processors. They
/// are the same on every system.
Counts test_studies(const Kind &kind, int studies, std::uint64_t first = 0);

/// Whether the counts fit tests that reject 5 %: max-T, and networks with ties broken, `least` to
/// `most`; networks as reported at most `most`, since ties and empty graphs make them cautious.
bool is_honest(const Counts &counts, int least, int most);

} // namespace null_studies
