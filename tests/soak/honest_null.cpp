// SPDX-License-Identifier: GPL-3.0-or-later
//
// Simulated studies in which nothing is to be found: how often do the group tests find something?
//
//   honest_null [STUDIES [FIRST]]     5,000 studies of each kind from number 0 on, about a minute
//
// At most 5 % may be rejected: of 5,000 that is 211 to 291, the exact binomial interval of 99 %.
// Ends with 1 if a count lies outside, or if tests pass that must not; with another number of
// studies only the table is made.

#include <cstdio>
#include <cstdlib>

#include "tests/statistics/null_studies.h"

namespace
{

using namespace null_studies;

constexpr int full_count = 5000;
constexpr int least = 211;
constexpr int most = 291;

void print_head(int studies)
{
    std::printf("%d studies of each kind, rejections of p <= 0.05; %d to %d of %d are honest\n\n",
                studies, least, most, full_count);
    std::printf("| kind of study | max-T |");
    for (const double p : threshold_p) {
        std::printf(" extent %g | ties broken | intensity %g | ties broken |", p, p);
    }
    std::printf(" verdict |\n|---|---|---|---|---|---|---|---|---|---|---|\n");
}

void print_row(const Kind &kind, const Counts &counts, bool honest)
{
    std::printf("| %s | %d |", kind.name.c_str(), counts.max_t);
    for (const NetworkCounts &network : counts.networks) {
        std::printf(" %d | %d | %d | %d |", network.extent, network.extent_ties_broken,
                    network.intensity, network.intensity_ties_broken);
    }
    const char *const otherwise = kind.must_fail ? "fails, as it must" : "NOT HONEST";
    std::printf(" %s |\n", honest ? "honest" : otherwise);
    std::fflush(stdout);
}

} // namespace

int main(int argc, char **argv)
{
    const int studies = argc > 1 ? std::atoi(argv[1]) : full_count;
    const std::uint64_t first = argc > 2 ? std::strtoull(argv[2], nullptr, 10) : 0;
    print_head(studies);
    bool all_as_wanted = true;
    for (const Kind &kind : kinds()) {
        const Counts counts = test_studies(kind, studies, first);
        const bool honest = is_honest(counts, least, most);
        print_row(kind, counts, honest);
        all_as_wanted = all_as_wanted && honest != kind.must_fail;
    }
    return studies != full_count || all_as_wanted ? 0 : 1;
}
