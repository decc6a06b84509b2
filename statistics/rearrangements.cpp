// SPDX-License-Identifier: GPL-3.0-or-later
#include "statistics/rearrangements.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <numeric>

#include "statistics/error.h"
#include "statistics/text.h"

namespace statistics
{
namespace
{

std::vector<int> all_subjects(int count)
{
    std::vector<int> subjects(static_cast<std::size_t>(count));
    std::iota(subjects.begin(), subjects.end(), 0);
    return subjects;
}

/// The subjects of each block, in the order of their first ones.
std::vector<std::vector<int>> blocks_of(const std::vector<std::string> &labels)
{
    std::map<std::string, std::size_t> number;
    std::vector<std::vector<int>> blocks;
    for (std::size_t i = 0; i < labels.size(); ++i) {
        const auto [known, added] = number.emplace(labels[i], blocks.size());
        if (added) {
            blocks.emplace_back();
        }
        blocks[known->second].push_back(static_cast<int>(i));
    }
    return blocks;
}

/// For each subject the first one with the same row of the design.
std::vector<int> equal_rows(const Eigen::MatrixXd &design)
{
    std::vector<int> class_of;
    for (Index i = 0; i < design.rows(); ++i) {
        Index first = 0;
        while (design.row(first) != design.row(i)) {
            ++first;
        }
        class_of.push_back(static_cast<int>(first));
    }
    return class_of;
}

/// How many distinct arrangements there are, or `limit` + 1 if there are more than `limit`.
Index distinct_arrangements(const std::vector<std::vector<int>> &blocks,
                            const std::vector<int> &class_of, Index limit)
{
    double total = 1.0;
    for (const std::vector<int> &block : blocks) {
        std::map<int, int> sizes;
        double placed = 0.0;
        for (const int subject : block) {
            // n! / (n1! n2! ...), one subject after the other: times n / (how many of its class so
            // far). Each value is a whole number, exact as long as it stays below the limit.
            placed += 1.0;
            total = total * placed / ++sizes[class_of[subject]];
        }
        if (total > static_cast<double>(limit)) {
            return limit + 1;
        }
    }
    return static_cast<Index>(std::llround(total));
}

void require_testable_within(const std::vector<std::vector<int>> &blocks,
                             const Hypothesis &hypothesis)
{
    for (Index c = 0; c < hypothesis.design.cols(); ++c) {
        if ((hypothesis.contrast.col(c).array() == 0.0).all()) {
            continue;
        }
        const bool constant =
            std::all_of(blocks.begin(), blocks.end(), [&](const std::vector<int> &block) {
                return std::all_of(block.begin(), block.end(), [&](int subject) {
                    return hypothesis.design(subject, c) == hypothesis.design(block.front(), c);
                });
            });
        if (constant) {
            throw Error("contrast " + hypothesis.name + ": " + hypothesis.columns[c] +
                        " is the same within every block, so permutations within blocks cannot "
                        "test it");
        }
    }
}

void require_permutations(const Eigen::MatrixXi &given, const std::vector<std::vector<int>> &blocks,
                          int subjects)
{
    if (given.cols() != subjects) {
        throw Error("the given permutations are of " + counted(given.cols(), "subject") +
                    ", the test has " + std::to_string(subjects));
    }
    std::vector<std::size_t> block_of(static_cast<std::size_t>(subjects));
    for (std::size_t b = 0; b < blocks.size(); ++b) {
        for (const int subject : blocks[b]) {
            block_of[subject] = b;
        }
    }
    for (Index p = 0; p < given.rows(); ++p) {
        std::vector<char> seen(static_cast<std::size_t>(subjects), 0);
        for (int i = 0; i < subjects; ++i) {
            const int source = given(p, i);
            if (source < 0 || source >= subjects || seen[source] != 0) {
                throw Error("row " + std::to_string(p + 1) +
                            " of the given permutations is no permutation of 0 to " +
                            std::to_string(subjects - 1) + ": it has " + std::to_string(source) +
                            (source < 0 || source >= subjects ? "" : " twice"));
            }
            if (block_of[source] != block_of[i]) {
                throw Error("row " + std::to_string(p + 1) +
                            " of the given permutations leaves the blocks: subject " +
                            std::to_string(i) + " gets the data of subject " +
                            std::to_string(source));
            }
            seen[source] = 1;
        }
    }
}

} // namespace

Rearrangements::Rearrangements(const Hypothesis &hypothesis, const RearrangementOptions &options)
    : m_subjects(static_cast<int>(hypothesis.subjects())), m_count(options.count),
      m_seed(options.seed)
{
    m_signs = options.exchange == Exchange::signs ||
              (options.exchange == Exchange::automatic && !hypothesis.has_constant);
    const bool given = options.given.size() > 0;
    if (m_signs && (given || !options.blocks.empty())) {
        throw Error("contrast " + hypothesis.name + " is tested by flipping signs; " +
                    (given ? "given permutations" : "blocks") + " are for permutations");
    }
    if (!options.blocks.empty() &&
        static_cast<Index>(options.blocks.size()) != hypothesis.subjects()) {
        throw Error(counted(static_cast<Index>(options.blocks.size()), "block label") + " for " +
                    counted(hypothesis.subjects(), "subject"));
    }
    if (options.blocks.empty()) {
        m_blocks.push_back(all_subjects(m_subjects));
    } else {
        m_blocks = blocks_of(options.blocks);
        require_testable_within(m_blocks, hypothesis);
    }
    if (given) {
        require_permutations(options.given, m_blocks, m_subjects);
        m_count = options.given.rows();
        for (Index p = 0; p < m_count; ++p) {
            for (int i = 0; i < m_subjects; ++i) {
                m_listed.push_back(options.given(p, i));
            }
        }
        return;
    }
    if (m_count < 1) {
        throw Error("a permutation test needs at least 1 permutation");
    }
    if (m_signs) {
        m_purpose = Purpose::sign;
        if (m_subjects < 62 && m_count >= Index{1} << m_subjects) {
            m_exhaustive = true;
            m_count = Index{1} << m_subjects;
        }
        return;
    }
    const std::vector<int> class_of = equal_rows(hypothesis.design);
    const Index distinct = distinct_arrangements(m_blocks, class_of, std::max<Index>(m_count, 1));
    if (distinct == 1) {
        throw Error(
            "contrast " + hypothesis.name +
            ": there is nothing to permute, all subjects of a block are alike in the design");
    }
    if (distinct <= m_count) {
        enumerate(class_of);
    }
}

Rearrangements::Rearrangements(int subjects, Index count, std::uint64_t seed, Purpose purpose)
    : m_subjects(subjects), m_count(count), m_seed(seed), m_purpose(purpose),
      m_blocks({all_subjects(subjects)})
{
    if (m_count < 1) {
        throw Error("a permutation test needs at least 1 permutation");
    }
    const std::vector<int> class_of = all_subjects(subjects);
    if (distinct_arrangements(m_blocks, class_of, m_count) <= m_count) {
        enumerate(class_of);
    }
}

/// A word says for each subject's data to which class of design rows they go. Within a class they
/// are handed out in ascending order, so that each distinct permutation comes once.
void Rearrangements::enumerate(const std::vector<int> &class_of)
{
    std::vector<std::vector<int>> sorted;
    for (const std::vector<int> &block : m_blocks) {
        std::vector<int> word;
        for (const int subject : block) {
            word.push_back(class_of[subject]);
        }
        std::sort(word.begin(), word.end());
        sorted.push_back(word);
    }
    std::vector<std::vector<int>> words = sorted;
    std::vector<int> source(static_cast<std::size_t>(m_subjects));
    m_exhaustive = true;
    m_count = 0;
    bool more = true;
    while (more) {
        for (std::size_t b = 0; b < m_blocks.size(); ++b) {
            std::map<int, std::vector<int>> data_of; // of a class, ascending
            for (std::size_t at = 0; at < words[b].size(); ++at) {
                data_of[words[b][at]].push_back(m_blocks[b][at]);
            }
            std::map<int, std::size_t> taken;
            for (const int subject : m_blocks[b]) {
                const int own = class_of[subject];
                source[subject] = data_of[own][taken[own]++];
            }
        }
        m_listed.insert(m_listed.end(), source.begin(), source.end());
        ++m_count;
        more = false;
        for (std::size_t b = 0; b < words.size() && !more; ++b) {
            // At its end a word starts again, and the next block takes a step.
            more = std::next_permutation(words[b].begin(), words[b].end());
        }
    }
}

void Rearrangements::get(Index number, int *source, double *sign) const
{
    std::fill(sign, sign + m_subjects, 1.0);
    if (!m_listed.empty()) {
        std::copy_n(m_listed.begin() + number * m_subjects, m_subjects, source);
        return;
    }
    std::iota(source, source + m_subjects, 0);
    if (m_signs && m_exhaustive) {
        for (int i = 0; i < m_subjects; ++i) {
            sign[i] = (number >> i & 1) != 0 ? -1.0 : 1.0;
        }
        return;
    }
    RandomSequence random(m_seed, m_purpose, static_cast<std::uint64_t>(number));
    if (m_signs) {
        std::uint32_t word = 0;
        for (int i = 0; i < m_subjects; ++i, word >>= 1) {
            if (i % 32 == 0) {
                word = random.next();
            }
            sign[i] = (word & 1U) != 0 ? -1.0 : 1.0;
        }
        return;
    }
    std::vector<int> order;
    for (const std::vector<int> &block : m_blocks) {
        order = block;
        random.shuffle(order.data(), static_cast<std::uint32_t>(order.size()));
        for (std::size_t at = 0; at < block.size(); ++at) {
            source[block[at]] = order[at];
        }
    }
}

double Rearrangements::p_value(Index at_least) const
{
    const auto b = static_cast<double>(at_least);
    const auto m = static_cast<double>(m_count);
    return m_exhaustive ? b / m : (b + 1.0) / (m + 1.0);
}

Index count_reaching(const Eigen::ArrayXd &null_values, double observed)
{
    return (null_values >= reaching(observed)).count();
}

} // namespace statistics
