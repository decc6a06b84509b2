// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/statistics/same_bytes.h"

#include <cstddef>
#include <cstring>

#include "statistics/permutation_test.h"

namespace same_bytes
{
namespace
{

using namespace statistics;

/// The hash FNV-1a, of 64 bits.
class Hash
{
public:
    void add(const void *data, std::size_t size)
    {
        const auto *const bytes = static_cast<const unsigned char *>(data);
        for (std::size_t i = 0; i < size; ++i) {
            m_value = (m_value ^ bytes[i]) * 0x100000001B3ULL;
        }
    }
    void add(const Eigen::ArrayXd &values)
    {
        add(values.data(), static_cast<std::size_t>(values.size()) * sizeof(double));
    }
    std::uint64_t value() const { return m_value; }

private:
    std::uint64_t m_value = 0xCBF29CE484222325ULL;
};

/// A constant, two groups and a covariate, all of numbers that need no rounding.
Eigen::MatrixXd design(Index subjects)
{
    RandomSequence random(3, Purpose{1000}, 0);
    Eigen::MatrixXd matrix = Eigen::MatrixXd::Ones(subjects, 3);
    for (Index i = 0; i < subjects; ++i) {
        matrix(i, 1) = i % 2 == 0 ? 1.0 : 0.0;
        matrix(i, 2) = random.below(64) / 8.0;
    }
    return matrix;
}

Hypothesis hypothesis(Index subjects)
{
    const std::vector<std::string> names = {"(Intercept)", "group", "age"};
    return make_hypothesis(design(subjects), names, read_contrast("x=group", names));
}

void add_all(const Rearrangements &rearrangements, Hash &hash)
{
    std::vector<int> source(static_cast<std::size_t>(rearrangements.subjects()));
    std::vector<double> sign(source.size());
    for (Index p = 0; p < rearrangements.count(); ++p) {
        rearrangements.get(p, source.data(), sign.data());
        for (std::size_t i = 0; i < source.size(); ++i) {
            const std::int32_t number = source[i];
            hash.add(&number, sizeof number);
            hash.add(&sign[i], sizeof sign[i]);
        }
    }
}

} // namespace

std::uint64_t of_rearrangements()
{
    Hash hash;
    RearrangementOptions options;
    options.count = 500;
    options.seed = 20240229;
    add_all(Rearrangements(hypothesis(31), options), hash);
    for (int i = 0; i < 31; ++i) {
        options.blocks.push_back(i % 5 < 2 ? "a" : "b");
    }
    add_all(Rearrangements(hypothesis(31), options), hash);
    options.blocks.clear();
    options.exchange = Exchange::signs;
    add_all(Rearrangements(hypothesis(37), options), hash);
    return hash.value();
}

std::uint64_t of_test(int threads)
{
    RandomSequence random(4, Purpose{1000}, 0);
    EdgeData data(24, edge_count(13));
    for (Index i = 0; i < data.size(); ++i) {
        data.data()[i] = random.below(1 << 20) / 1048576.0;
    }
    PermutationTestOptions options;
    options.threads = threads;
    options.thresholds = {1.5, 2.5};
    RearrangementOptions wanted;
    wanted.count = 999;
    const Hypothesis question = hypothesis(24);
    const PermutationTestResult result =
        permutation_test(data, question, Rearrangements(question, wanted), options);
    Hash hash;
    hash.add(result.model.statistic);
    hash.add(result.model.estimate);
    hash.add(result.p_permuted);
    hash.add(result.p_fwe);
    hash.add(result.null_maximum);
    for (const NetworkResult &network : result.networks) {
        hash.add(network.null_extent);
        hash.add(network.null_intensity);
        for (const Component &component : network.components) {
            const double numbers[] = {component.intensity, component.p_extent,
                                      component.p_intensity};
            hash.add(numbers, sizeof numbers);
        }
    }
    return hash.value();
}

} // namespace same_bytes
