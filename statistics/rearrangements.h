// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <Eigen/Core>

#include "statistics/hypothesis.h"
#include "statistics/random.h"

namespace statistics
{

using Eigen::Index;

/// What is done to the residuals of the reduced model.
enum class Exchange {
    /// Signs where the reduced model holds no constant (one sample, pairs), else permutations.
    automatic,
    permutations,
    signs,
};

struct RearrangementOptions {
    Index count = 5000; ///< m
    std::uint64_t seed = 1;
    Exchange exchange = Exchange::automatic;
    /// One label per subject, or empty: subjects are permuted within equal labels only.
    std::vector<std::string> blocks;
    /// Permutations to be used instead of drawn ones, if it has rows: in row p subject i gets the
    /// data of subject given(p, i), counted from 0. `count` and `seed` are then ignored.
    Eigen::MatrixXi given;
};

/// m rearrangements of n subjects: subject i gets the data of subject source[i], times sign[i].
///
/// Drawn ones are independent, with replacement, and the identity is not excluded: rearrangement p
/// is made of `RandomSequence(seed, purpose, p)` alone. If there are no more than m distinct ones,
/// all of them are done instead, the identity among them. Two permutations are the same when they
/// give the same data to each set of subjects with equal rows of the design.
class Rearrangements
{
public:
    /// Those of a test.
    /// \throws Error if there are other than one block per subject, or blocks with signs; a tested
    ///         column is constant in every block; there is nothing to rearrange; given rows have
    ///         the wrong length, are no permutations, leave their block, or signs are what is
    ///         needed; m < 1.
    Rearrangements(const Hypothesis &hypothesis, const RearrangementOptions &options);

    /// Free permutations of `subjects` things that all differ.
    Rearrangements(int subjects, Index count, std::uint64_t seed, Purpose purpose);

    int subjects() const { return m_subjects; }
    Index count() const { return m_count; }
    bool is_exhaustive() const { return m_exhaustive; }
    bool has_signs() const { return m_signs; }

    /// Rearrangement `number`, 0 to count() - 1, into arrays of subjects() values.
    void get(Index number, int *source, double *sign) const;

    /// The p of a statistic that `at_least` of the rearrangements reach: (b + 1) / (m + 1), and b /
    /// M if all M distinct ones were done.
    double p_value(Index at_least) const;

private:
    void enumerate(const std::vector<int> &class_of);

    int m_subjects = 0;
    Index m_count = 0;
    std::uint64_t m_seed = 0;
    Purpose m_purpose = Purpose::permutation;
    bool m_signs = false;
    bool m_exhaustive = false;
    std::vector<std::vector<int>> m_blocks;
    /// The permutations one after the other, where they are not drawn.
    std::vector<int> m_listed;
};

/// The smallest null value that counts as reaching an observed one: 1e-12 (relative) below it, so
/// that rearrangements which mean the same are not told apart by rounding.
inline double reaching(double observed)
{
    return observed - 1e-12 * (observed < 0.0 ? -observed : observed);
}

/// How many null values reach the observed one.
Index count_reaching(const Eigen::ArrayXd &null_values, double observed);

} // namespace statistics
