// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/statistics/null_studies.h"

#include <algorithm>
#include <cmath>

#include "statistics/distributions.h"
#include "statistics/parallel.h"
#include "statistics/permutation_test.h"
#include "tests/statistics/random_data.h"

namespace null_studies
{
namespace
{

using namespace statistics;

constexpr Index subjects = 40;
constexpr int nodes = 28;
constexpr Index rearrangements_of_a_study = 199;

double threshold_of(double p, double df)
{
    double low = 0.0;
    double high = 100.0;
    for (int step = 0; step < 100; ++step) {
        const double middle = (low + high) / 2.0;
        (t_two_sided(middle, df) > p ? low : high) = middle;
    }
    return low;
}

int block_of(Index subject)
{
    return static_cast<int>(subject / 10);
}

/// Half of the subjects; where blocks matter, 8, 2, 7 and 3 of each block's ten.
bool is_patient(Index subject, const Kind &kind)
{
    constexpr std::array<Index, 4> patients = {8, 2, 7, 3};
    return kind.blocks != Blocks::none ? subject % 10 < patients[block_of(subject)]
                                       : subject % 2 == 0;
}

/// A constant, the group, blocks but the first, covariates.
Eigen::MatrixXd design_of(const Kind &kind, RandomNumbers &random)
{
    const Index groups = kind.one_sample ? 0 : 1;
    const Index blocks = kind.blocks == Blocks::modelled ? 3 : 0;
    const Index covariate = 1 + groups + blocks;
    Eigen::MatrixXd design = Eigen::MatrixXd::Ones(subjects, covariate + (kind.covariates ? 2 : 0));
    for (Index s = 0; s < subjects; ++s) {
        const double patient = is_patient(s, kind) ? 1.0 : 0.0;
        if (!kind.one_sample) {
            design(s, 1) = patient;
        }
        for (Index b = 0; b < blocks; ++b) {
            design(s, 1 + groups + b) = block_of(s) == b + 1 ? 1.0 : 0.0;
        }
        if (kind.covariates) {
            // One that differs between the groups, and a skewed one.
            design(s, covariate) = random.normal() + (kind.one_sample ? 0.0 : patient);
            design(s, covariate + 1) = std::exp(random.normal());
        }
    }
    if (kind.one_sample && kind.covariates) {
        design.rightCols(2).rowwise() -= design.rightCols(2).colwise().mean().eval();
    }
    return design;
}

/// Edges that share the level of their nodes, with effects of what is not tested.
EdgeData data_of(const Kind &kind, const Eigen::MatrixXd &design, RandomNumbers &random)
{
    const std::vector<NodePair> pairs = node_pairs(nodes);
    EdgeData data(subjects, static_cast<Index>(pairs.size()));
    for (Index s = 0; s < subjects; ++s) {
        std::array<double, nodes> level = {};
        for (double &value : level) {
            value = 0.5 * random.normal();
        }
        double shift = kind.one_sample ? 0.0 : 0.3;
        if (kind.covariates) {
            shift += 0.5 * design(s, design.cols() - 2) + 0.3 * design(s, design.cols() - 1);
        }
        if (kind.blocks != Blocks::none) {
            shift += block_of(s) % 2 == 0 ? 1.5 : 0.0;
        }
        for (std::size_t e = 0; e < pairs.size(); ++e) {
            data(s, static_cast<Index>(e)) =
                shift + level[pairs[e].first] + level[pairs[e].second] + random.normal();
        }
    }
    return data;
}

/// Whether p <= 0.05 of an observed value: b as reported, or between the null values above and
/// those at least as large.
struct Verdict {
    bool reported = false;
    bool ties_broken = false;
};

Verdict verdict(const Eigen::ArrayXd &null_values, double observed, RandomNumbers &random)
{
    const Index reached = count_reaching(null_values, observed);
    const Index above = (null_values > observed + 1e-12 * observed).count();
    const Index broken = above + random.below(static_cast<int>(reached - above) + 1);
    const auto rejects = [](Index b) { return 20 * (b + 1) <= rearrangements_of_a_study + 1; };
    return {rejects(reached), rejects(broken)};
}

Counts test_study(const Kind &kind, std::uint64_t number)
{
    RandomNumbers random(20260101 + static_cast<std::uint64_t>(&kind - kinds().data()), number);
    const Eigen::MatrixXd design = design_of(kind, random);
    const EdgeData data = data_of(kind, design, random);
    std::vector<std::string> names;
    for (Index c = 0; c < design.cols(); ++c) {
        names.push_back("c" + std::to_string(c));
    }
    const Hypothesis hypothesis =
        make_hypothesis(design, names, read_contrast(kind.one_sample ? "x=c0" : "x=c1", names));
    RearrangementOptions wanted;
    wanted.count = rearrangements_of_a_study;
    wanted.seed = number;
    if (kind.blocks == Blocks::within || kind.blocks == Blocks::modelled) {
        for (Index s = 0; s < subjects; ++s) {
            wanted.blocks.push_back(std::to_string(block_of(s)));
        }
    }
    PermutationTestOptions options;
    options.threads = 1;
    options.sides = kind.sides;
    for (const double p : threshold_p) {
        options.thresholds.push_back(threshold_of(p, hypothesis.df));
    }
    const PermutationTestResult result =
        permutation_test(data, hypothesis, Rearrangements(hypothesis, wanted), options);

    Counts counts;
    counts.max_t = result.p_fwe.minCoeff() <= 0.05 ? 1 : 0;
    for (std::size_t t = 0; t < threshold_p.size(); ++t) {
        double extent = 0.0;
        double intensity = 0.0;
        for (const Component &component : result.networks[t].components) {
            extent = std::max(extent, static_cast<double>(component.edges.size()));
            intensity = std::max(intensity, component.intensity);
        }
        const Verdict by_extent = verdict(result.networks[t].null_extent, extent, random);
        const Verdict by_intensity = verdict(result.networks[t].null_intensity, intensity, random);
        NetworkCounts &network = counts.networks[t];
        network.extent = by_extent.reported ? 1 : 0;
        network.extent_ties_broken = by_extent.ties_broken ? 1 : 0;
        network.intensity = by_intensity.reported ? 1 : 0;
        network.intensity_ties_broken = by_intensity.ties_broken ? 1 : 0;
    }
    return counts;
}

} // namespace

const std::vector<Kind> &kinds()
{
    static const std::vector<Kind> all = {
        {"two groups"},
        {"two groups, greater", false, false, Blocks::none, Sides::greater},
        {"two groups, both", false, false, Blocks::none, Sides::both},
        {"two groups, covariates", false, true},
        {"one sample", true},
        {"one sample, covariates", true, true},
        {"blocks, within them", false, false, Blocks::within},
        {"blocks, within them and in the model, covariates", false, true, Blocks::modelled},
        {"blocks, within them, covariates", false, true, Blocks::within, Sides::each, true},
        {"blocks, permuted freely", false, false, Blocks::ignored, Sides::each, true},
    };
    return all;
}

Counts test_studies(const Kind &kind, int studies, std::uint64_t first)
{
    std::vector<Counts> each(static_cast<std::size_t>(studies));
    for_each_chunk(studies, 0, [&](std::ptrdiff_t study, int) {
        each[study] = test_study(kind, first + static_cast<std::uint64_t>(study));
    });
    Counts sum;
    for (const Counts &counts : each) {
        sum.max_t += counts.max_t;
        for (std::size_t t = 0; t < sum.networks.size(); ++t) {
            sum.networks[t].extent += counts.networks[t].extent;
            sum.networks[t].extent_ties_broken += counts.networks[t].extent_ties_broken;
            sum.networks[t].intensity += counts.networks[t].intensity;
            sum.networks[t].intensity_ties_broken += counts.networks[t].intensity_ties_broken;
        }
    }
    return sum;
}

bool is_honest(const Counts &counts, int least, int most)
{
    const auto within = [&](int count) { return count >= least && count <= most; };
    bool honest = within(counts.max_t);
    for (const NetworkCounts &network : counts.networks) {
        honest = honest && within(network.extent_ties_broken) &&
                 within(network.intensity_ties_broken) && network.extent <= most &&
                 network.intensity <= most;
    }
    return honest;
}

} // namespace null_studies
